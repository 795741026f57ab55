#include "registry/client/HttpExchange.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
constexpr int CancelPollMs = 50;

bool SameOrigin(const QUrl& a, const QUrl& b)
{
    return a.scheme() == b.scheme() && a.host().compare(b.host(), Qt::CaseInsensitive) == 0 &&
           a.port(a.scheme() == u"https" ? 443 : 80) == b.port(b.scheme() == u"https" ? 443 : 80);
}

// An HTTP status of 400 and above comes with an error of its own class; only
// network-level errors (below 100) and proxy errors (1xx) mean no whole answer.
bool OnlyAnHttpStatus(QNetworkReply::NetworkError error, int status)
{
    return error == QNetworkReply::NoError || (status >= 400 && error >= QNetworkReply::ContentAccessDenied);
}

QString TransportWords(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::TimeoutError: return u"Przekroczono czas oczekiwania na odpowiedź serwera"_s;
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::OperationCanceledError: return u"Połączenie zostało przerwane"_s;
    case QNetworkReply::SslHandshakeFailedError: return u"Nie udało się nawiązać bezpiecznego połączenia z serwerem"_s;
    case QNetworkReply::TooManyRedirectsError: return u"Serwer przekierowuje zapytanie zbyt wiele razy"_s;
    case QNetworkReply::InsecureRedirectError: return u"Serwer przekierował zapytanie pod niedozwolony adres"_s;
    default: // the other network and proxy errors: refused, host not found, network down, …
        return error < QNetworkReply::ContentAccessDenied ? u"Brak połączenia z serwerem"_s
                                                          : u"Błąd komunikacji z serwerem"_s;
    }
}

void CollectMessages(const QJsonValue& value, QStringList& messages, int depth)
{
    if (depth > 4)
        return;
    if (value.isArray()) {
        for (const QJsonValue& item : value.toArray())
            CollectMessages(item, messages, depth + 1);
        return;
    }
    const QJsonObject object = value.toObject();
    const QString message = object.value(u"komunikat").toString();
    if (!message.isEmpty()) {
        const QString code = object.value(u"kodBledu").toString();
        messages.append(code.isEmpty() ? message : code + u": "_s + message);
        return;
    }
    for (const QJsonValue& member : object)
        CollectMessages(member, messages, depth + 1);
}
} // namespace

QString RegistryMessageIn(const QByteArray& body)
{
    QStringList messages;
    CollectMessages(QJsonDocument::fromJson(body).object(), messages, 0);
    return messages.join(u"; "_s);
}

HttpExchange::HttpExchange(QNetworkAccessManager& network, Verb verb, QNetworkRequest request, const QByteArray& body,
                           ExchangeRules rules)
    : listener_(std::make_unique<QObject>()), timer_(std::make_unique<QTimer>()), rules_(std::move(rules)),
      origin_(request.url())
{
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    if (verb == Verb::Post) {
        request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
        reply_.reset(network.post(request, body));
    } else {
        reply_.reset(network.get(request));
    }
    watchReply();
}

HttpExchange::~HttpExchange()
{
    markFinished();
    listener_.reset(); // nothing the reply says from now on reaches this exchange
}

void HttpExchange::LaterDelete::operator()(QNetworkReply* reply) const
{
    if (!reply->isFinished())
        reply->abort();
    reply->deleteLater(); // the manager, its parent, deletes it at the latest
}

void HttpExchange::watchReply()
{
    QNetworkReply* reply = reply_.get();
    QObject* context = listener_.get();
    timer_->setSingleShot(true);
    QObject::connect(timer_.get(), &QTimer::timeout, context, [this] { onTimeout(); });
    QObject::connect(reply, &QNetworkReply::socketStartedConnecting, context, [this] { markSent(); });
    QObject::connect(reply, &QNetworkReply::requestSent, context, [this] { markSent(); });
    QObject::connect(reply, &QNetworkReply::redirected, context, [this](const QUrl& target) { onRedirect(target); });
    QObject::connect(reply, &QNetworkReply::readyRead, context, [this] { readArrived(); });
    QObject::connect(reply, &QNetworkReply::finished, context, [this] { markFinished(); });
    timer_->start(rules_.timeoutMs);
}

// The time-out counts from when the request really leaves: one that waits in
// Qt's queue for a free connection to the host is not timing out yet.
void HttpExchange::markSent()
{
    if (sent_)
        return;
    sent_ = counted_ = true;
    ++*rules_.sentAndOpen;
    timer_->start(rules_.timeoutMs);
}

void HttpExchange::markFinished()
{
    timer_->stop();
    if (counted_) {
        --*rules_.sentAndOpen;
        counted_ = false;
    }
}

void HttpExchange::onTimeout()
{
    if (!sent_ && *rules_.sentAndOpen > 0) {
        timer_->start(rules_.timeoutMs); // still queued behind requests that are answered now
        return;
    }
    abortFor(Abort::TimedOut);
}

// Redirects are followed only within the same scheme, host and port, so the
// token and the log-in form never reach another server.
void HttpExchange::onRedirect(const QUrl& target)
{
    if (SameOrigin(origin_, target)) {
        Q_EMIT reply_->redirectAllowed();
        return;
    }
    refusedTarget_ = target.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery);
    abortFor(Abort::RedirectRefused);
}

// The answer is taken as it arrives, so one past the limit is refused before it
// fills the memory.
void HttpExchange::readArrived()
{
    const qint64 announced = reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    if (announced > rules_.maxAnswerBytes || result_.body.size() + reply_->bytesAvailable() > rules_.maxAnswerBytes) {
        abortFor(Abort::TooLarge);
        return;
    }
    result_.body += reply_->readAll();
}

void HttpExchange::abortFor(Abort reason)
{
    if (abort_ == Abort::None)
        abort_ = reason;
    reply_->abort();
}

bool HttpExchange::stopAsked() const
{
    return rules_.cancelRequested && rules_.cancelRequested();
}

const HttpResult& HttpExchange::wait()
{
    if (!reply_->isFinished() && stopAsked())
        abortFor(Abort::Cancelled);
    if (!reply_->isFinished()) {
        QEventLoop loop;
        QTimer poll;
        QObject::connect(reply_.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
        QObject::connect(&poll, &QTimer::timeout, &loop, [this] {
            if (stopAsked())
                abortFor(Abort::Cancelled);
        });
        poll.start(CancelPollMs);
        loop.exec();
    }
    collect();
    return result_;
}

void HttpExchange::collect()
{
    if (collected_)
        return;
    markFinished();
    collected_ = true;
    if (abort_ == Abort::None && reply_->isOpen())
        result_.body += reply_->readAll();
    result_.status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (result_.status > 0) {
        const QString reason = reply_->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        result_.statusLine = u"HTTP/1.1 %1 %2"_s.arg(result_.status).arg(reason).trimmed();
    }
    result_.cancelled = abort_ == Abort::Cancelled;
    if (abort_ != Abort::None || !OnlyAnHttpStatus(reply_->error(), result_.status)) {
        result_.failure = failureText();
        result_.body.clear();
    } else if (result_.status < 200 || (result_.status >= 300 && result_.status < 400)) {
        // A redirect left at the end of the chain, or no final answer at all.
        result_.failure = u"Nie udało się podążyć za przekierowaniem serwera (%1)"_s.arg(result_.statusLine);
        result_.body.clear();
    }
}

QString HttpExchange::failureText() const
{
    const QString address = reply_->url().toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery);
    switch (abort_) {
    case Abort::Cancelled: return u"Przerwano na żądanie użytkownika"_s;
    case Abort::TimedOut:
        return u"Przekroczono czas oczekiwania na odpowiedź serwera (%1 s): %2"_s.arg(rules_.timeoutMs / 1000.0)
            .arg(address);
    case Abort::TooLarge:
        return u"Odpowiedź serwera przekracza dopuszczalny rozmiar %1 MB: %2"_s
            .arg(static_cast<double>(rules_.maxAnswerBytes) / (1 << 20))
            .arg(address);
    case Abort::RedirectRefused:
        return u"Serwer przekierował zapytanie pod inny adres (%1); nie wysłano tam danych logowania"_s.arg(
            refusedTarget_);
    case Abort::None: break;
    }
    return TransportWords(reply_->error()) + u" (%1): %2"_s.arg(reply_->errorString(), address);
}
