#include "registry/client/TdmIRZ_PLUS.h"

#include "framework/OperationHost.h"
#include "registry/client/OrderedJson.h"
#include "registry/client/SingleAttemptPost.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkInformation>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {
QString DateText(TDateTime value)
{
    return ToDate(value).toString(u"yyyy-MM-dd");
}

// The registry's own words first, when its error answer has them.
QString StatusAndMessage(const HttpResult& result)
{
    const QString message = RegistryMessageIn(result.body);
    return message.isEmpty() ? result.statusLine : message + u" ("_s + result.statusLine + u')';
}

// A POST's answer text; whatever kept it from coming whole, or an HTTP error status, raises.
QString PostAnswer(const HttpResult& result)
{
    if (result.cancelled)
        throw RequestCancelled();
    if (!result.failure.isEmpty())
        throw RegistryError(result.failure);
    if (result.httpError())
        throw RegistryError(u"Serwer zgłosił błąd: "_s + StatusAndMessage(result), result.status);
    return QString::fromUtf8(result.body);
}

bool IsLoopback(const QString& base)
{
    const QString host = QUrl(base).host();
    return host == u"localhost" || QHostAddress(host).isLoopback();
}

// A password or a token travels in clear text only to this very machine.
bool SafeToSendSecrets(const QString& base)
{
    return QUrl(base).scheme() == u"https" || IsLoopback(base);
}

// One manager for the whole run of the program, never destroyed. When a request
// finishes, Qt's HTTP thread queues the deletion of its own objects for its next
// turn; destroying a manager stops that thread, and whatever it had not yet
// deleted is lost. A manager that lives as long as the process never stops its
// thread, so nothing it holds is ever lost or leaked.
QNetworkAccessManager& ApplicationNetwork()
{
    static QNetworkAccessManager* const network = new QNetworkAccessManager;
    return *network;
}

constexpr qsizetype MaxTokenLength = 16 * 1024;

// A token goes into a header line: blanks or control characters would break it.
bool PlainToken(const QString& token)
{
    return !token.isEmpty() && token.size() <= MaxTokenLength &&
           std::all_of(token.begin(), token.end(), [](QChar c) { return c.unicode() > 0x20 && c.unicode() < 0x7f; });
}
} // namespace

TdmIRZ_PLUS::TdmIRZ_PLUS(RegistryConfig config, OperationHost& host)
    : config_(std::move(config)), host_(host), network_(ApplicationNetwork())
{}

// Only a definite "offline" refuses; an unknown state counts as connected, and
// a registry on this machine needs no network at all.
bool TdmIRZ_PLUS::connected() const
{
    if (IsLoopback(config_.ssoBase))
        return true;
    if (!QNetworkInformation::instance())
        QNetworkInformation::loadDefaultBackend();
    const QNetworkInformation* info = QNetworkInformation::instance();
    return !info || info->reachability() != QNetworkInformation::Reachability::Disconnected;
}

bool TdmIRZ_PLUS::Authorize(const QString& login, const QString& password)
{
    const QString caption = u"Bład..."_s;
    const QString failed = u"Autoryzacja zakończona z błędem: "_s;
    for (const QString& base : {config_.ssoBase, config_.apiBase}) {
        if (!SafeToSendSecrets(base)) {
            host_.showMessage(caption, failed + u"adres serwera musi zaczynać się od https:// (%1)"_s.arg(base),
                              MessageIcon::Error);
            return false;
        }
    }
    if (!connected()) {
        host_.showMessage(caption, u"Program nie ma dostępu do internetu"_s, MessageIcon::Error);
        return false;
    }
    const QString failure = requestToken(login, password);
    if (failure.isNull())
        return true;
    if (failure == u"Unauthorized")
        host_.showMessage(caption, u"Brak autoryzacji (Być może niepoprawny login/hasło)"_s, MessageIcon::Error);
    else if (!failure.isEmpty())
        host_.showMessage(caption, failed + failure, MessageIcon::Error);
    return false;
}

// Null on success; empty when the user stopped; otherwise why the log-in failed.
QString TdmIRZ_PLUS::requestToken(const QString& login, const QString& password)
{
    // The values go in as typed, without percent-encoding.
    const QString body = u"username="_s + login + u'&' + u"password="_s + password + u'&' +
                         u"client_id=aplikacja-irzplus"_s + u'&' + u"grant_type=password"_s;
    QNetworkRequest request(QUrl(config_.ssoBase + u"/auth/realms/ewniosekplus/protocol/openid-connect/token"_s));
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
    HttpExchange exchange(network_, HttpExchange::Verb::Post, request, body.toUtf8(), rules(config_.getTimeoutMs));
    const HttpResult& result = exchange.wait();
    if (result.cancelled)
        return u""_s;
    if (!result.failure.isEmpty())
        return result.failure;
    if (result.status == 401)
        return u"Unauthorized"_s;
    if (result.httpError())
        return StatusAndMessage(result);
    const QJsonValue token = QJsonDocument::fromJson(result.body).object().value(u"access_token");
    if (!token.isString() || token.toString().isEmpty())
        return u"odpowiedź serwera nie zawiera tokenu dostępu"_s;
    if (!PlainToken(token.toString()))
        return u"serwer zwrócił niepoprawny token dostępu"_s;
    Token = token.toString();
    return {};
}

QString TdmIRZ_PLUS::apiUrl(const QString& path, bool testBranch) const
{
    return config_.apiBase + path.arg(testBranch ? u"test"_s : u"prod"_s);
}

QNetworkRequest TdmIRZ_PLUS::apiRequest(const QString& url, bool jsonBody) const
{
    // The query is built by plain concatenation; QUrl must not re-encode it.
    QNetworkRequest request(QUrl(url, QUrl::TolerantMode));
    request.setRawHeader("Accept", "application/json");
    request.setRawHeader("Authorization", "Bearer " + Token.toUtf8());
    if (jsonBody)
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    return request;
}

ExchangeRules TdmIRZ_PLUS::rules(int timeoutMs) const
{
    return {timeoutMs, config_.maxAnswerBytes, [this] { return host_.cancelRequested(); }, sentAndOpen_};
}

std::unique_ptr<HttpExchange> TdmIRZ_PLUS::startGet(const QString& url)
{
    return std::make_unique<HttpExchange>(network_, HttpExchange::Verb::Get, apiRequest(url, false), QByteArray(),
                                          rules(config_.getTimeoutMs));
}

// A failure after the status line (the connection dropped, the time-out struck
// while the body came, a refused redirect) is a failed answer, never an empty
// good one; a failure before any answer ends the operation.
QString TdmIRZ_PLUS::getAnswer(HttpExchange& exchange)
{
    const HttpResult& result = exchange.wait();
    if (result.cancelled)
        throw RequestCancelled();
    if (!result.failure.isEmpty()) {
        if (result.status == 0)
            throw RegistryError(result.failure);
        return ErrorMarker + result.failure;
    }
    if (result.httpError())
        return ErrorMarker + StatusAndMessage(result);
    return QString::fromUtf8(result.body);
}

QString TdmIRZ_PLUS::GetJson(const QString& url)
{
    return getAnswer(*startGet(url));
}

QString TdmIRZ_PLUS::post(const QString& url, const QByteArray& body)
{
    HttpExchange exchange(network_, HttpExchange::Verb::Post, apiRequest(url, true), body,
                          rules(config_.postTimeoutMs));
    return PostAnswer(exchange.wait());
}

QString TdmIRZ_PLUS::postOnce(const QString& url, const QByteArray& body)
{
    const QList<QByteArray> headers{"Accept: application/json", "Content-Type: application/json",
                                    "Authorization: Bearer " + Token.toUtf8()};
    const SingleAttemptResult result = PostOnce(url, headers, body, rules(config_.postTimeoutMs));
    if (result.nothingSent && !result.failure.isEmpty())
        throw NoticeNotSent(result.failure);
    return PostAnswer(result);
}

QString TdmIRZ_PLUS::ListHoldings(const QString& producerNumber, const QString& holdingNumber,
                                  const QString& holdingType, const QString& holdingState, bool testBranch)
{
    OrderedJson body;
    body.add(u"numerProducenta"_s, producerNumber);
    if (!holdingNumber.isEmpty())
        body.add(u"numerDzialalnosci"_s, holdingNumber);
    if (!holdingType.isEmpty())
        body.add(u"typDzialalnosci"_s, holdingType);
    if (!holdingState.isEmpty())
        body.add(u"stanDzialalnosci"_s, holdingState);
    return post(apiUrl(u"/api/dzialalnosci/api/%1/dzialalnosci"_s, testBranch), body.toJson());
}

QString TdmIRZ_PLUS::ListAnimals(const QString& producerNumber, const QString& holdingNumber, const QString& species,
                                 const QString& animalNumber, const QString& sex, const QString& breed,
                                 const QString& useType, TDateTime stateDate, bool testBranch)
{
    QString query = u"?numerProducenta="_s + producerNumber + u"&gatunek="_s + species;
    const auto optional = [&query](const char* key, const QString& value) {
        if (!value.isEmpty())
            query += u'&' + QLatin1String(key) + u'=' + value;
    };
    optional("numerDzialalnosci", holdingNumber);
    optional("numerIdentyfikacyjnyRejestrowanegoZwierzecia", animalNumber);
    optional("plec", sex);
    optional("kodRasy", breed);
    optional("typUzytkowy", useType);
    if (stateDate > EmptyDate)
        query += u"&stanDanych="_s + DateText(stateDate);
    return GetJson(apiUrl(u"/api/indywidualne/zwierze/api/%1/zwierzetaIndywidualne"_s, testBranch) + query);
}

QString TdmIRZ_PLUS::animalUrl(const QString& producerNumber, const QString& animalNumber, bool testBranch) const
{
    return apiUrl(u"/api/indywidualne/zwierze/api/%1/zwierzeIndywidualne"_s, testBranch) + u"?numerProducenta="_s +
           producerNumber + u"&numerIdentyfikacyjnyZwierzecia="_s + animalNumber;
}

QString TdmIRZ_PLUS::GetAnimal(const QString& producerNumber, const QString& animalNumber, bool testBranch)
{
    return GetJson(animalUrl(producerNumber, animalNumber, testBranch));
}

QString TdmIRZ_PLUS::ListDocuments(const QString& producerNumber, const QString& documentNumber, TDateTime dateFrom,
                                   TDateTime dateTo, bool testBranch)
{
    QString query = u"?numerProducenta="_s + producerNumber;
    if (!documentNumber.isEmpty())
        query += u"&numerDokumentu="_s + documentNumber;
    if (dateFrom > EmptyDate)
        query += u"&dataPrzyjeciaOd="_s + DateText(dateFrom);
    if (dateTo > EmptyDate)
        query += u"&dataPrzyjeciaDo="_s + DateText(dateTo);
    return GetJson(apiUrl(u"/api/dokumenty/dokument/api/%1/listaDokumentow"_s, testBranch) + query);
}

QString TdmIRZ_PLUS::SubmitUseChange(const QString& producerNumber, const QString& organisationalUnit,
                                     const QString& holdingNumber, const QString& species, TDateTime date,
                                     const QString& animalNumber, const QString& useType, const QString& useDirection,
                                     bool testBranch)
{
    const QString kod = u"kod"_s;
    OrderedJson position;
    position.add(u"lp"_s, u"1"_s);
    position.add(u"numerIdentyfikacyjnyZwierzecia"_s, animalNumber);
    if (!useType.isEmpty())
        position.add(u"typUzytkowy"_s, OrderedJson().add(kod, useType));
    if (!useDirection.isEmpty())
        position.add(u"kierunekUzytkowy"_s, OrderedJson().add(kod, useDirection));
    const QString reason = !useType.isEmpty() && !useDirection.isEmpty() ? u"ZTK"_s
                           : !useType.isEmpty()                          ? u"ZTU"_s
                                                                         : u"ZKU"_s;
    position.add(u"celZmiany"_s, OrderedJson().add(kod, reason));

    OrderedJson notice;
    notice.add(u"numerDzialalnosci"_s, holdingNumber);
    notice.add(u"gatunek"_s, OrderedJson().add(kod, species));
    notice.add(u"dataOkresleniaTypuIKierunkuUzytkowania"_s, DateText(date));
    notice.addArray(u"pozycje"_s, {position});

    OrderedJson body;
    body.add(u"numerProducenta"_s, producerNumber);
    if (!organisationalUnit.isEmpty())
        body.add(u"komorkaOrganizacyjna"_s, organisationalUnit);
    body.add(u"zgloszenie"_s, notice);
    return postOnce(apiUrl(u"/api/indywidualne/dokument/api/%1/ztuku"_s, testBranch), body.toJson());
}

TdmIRZ_PLUS::AnimalQueue TdmIRZ_PLUS::animalQueue(const QString& producerNumber, QStringList animals, bool testBranch)
{
    return AnimalQueue(*this, producerNumber, std::move(animals), testBranch);
}

TdmIRZ_PLUS::AnimalQueue::AnimalQueue(TdmIRZ_PLUS& client, QString producerNumber, QStringList animals, bool test)
    : client_(client), producerNumber_(std::move(producerNumber)), animals_(std::move(animals)), test_(test)
{}

void TdmIRZ_PLUS::AnimalQueue::fill()
{
    const auto limit = static_cast<std::size_t>(std::max(1, client_.config_.maxParallelRequests));
    while (inFlight_.size() < limit && requested_ < animals_.size())
        inFlight_.push_back(client_.startGet(client_.animalUrl(producerNumber_, animals_[requested_++], test_)));
}

QString TdmIRZ_PLUS::AnimalQueue::next()
{
    fill();
    std::unique_ptr<HttpExchange> exchange = std::move(inFlight_.front());
    inFlight_.pop_front();
    ++nextIndex_;
    return client_.getAnswer(*exchange);
}
