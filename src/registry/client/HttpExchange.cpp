#include "registry/client/HttpExchange.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

HttpExchange::HttpExchange(QNetworkAccessManager& network, Verb verb, QNetworkRequest request, QByteArray body,
                           int timeoutMs)
    : timer_(std::make_unique<QTimer>()), timeoutMs_(timeoutMs)
{
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    if (verb == Verb::Post) {
        request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
        reply_.reset(network.post(request, body));
    } else {
        reply_.reset(network.get(request));
    }
    reply_->setParent(nullptr);
    timer_->setSingleShot(true);
    QObject::connect(timer_.get(), &QTimer::timeout, reply_.get(), [this] {
        timedOut_ = true;
        reply_->abort();
    });
    // Requests beyond the connections Qt opens to one host wait in its queue;
    // the time-out counts from when a request really leaves, so the number
    // kept in flight never turns a slow answer into a time-out.
    const auto leaving = [this] {
        if (!sent_) {
            sent_ = true;
            timer_->start(timeoutMs_);
        }
    };
    QObject::connect(reply_.get(), &QNetworkReply::socketStartedConnecting, reply_.get(), leaving);
    QObject::connect(reply_.get(), &QNetworkReply::requestSent, reply_.get(), leaving);
    timer_->start(timeoutMs);
}

HttpExchange::~HttpExchange()
{
    if (!reply_->isFinished())
        reply_->abort();
}

bool HttpExchange::finished() const
{
    return reply_->isFinished();
}

void HttpExchange::abort()
{
    reply_->abort();
}

const HttpResult& HttpExchange::wait()
{
    if (!reply_->isFinished()) {
        QEventLoop loop;
        QObject::connect(reply_.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    collect();
    return result_;
}

void HttpExchange::collect()
{
    if (collected_)
        return;
    collected_ = true;
    timer_->stop();
    result_.status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply_->isOpen())
        result_.body = reply_->readAll();
    if (result_.status > 0) {
        const QString reason = reply_->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        result_.statusLine = QStringLiteral("HTTP/1.1 %1 %2").arg(result_.status).arg(reason).trimmed();
        return;
    }
    if (timedOut_)
        result_.transportError = QStringLiteral("Przekroczono czas oczekiwania na odpowiedź serwera (%1 s): %2")
                                     .arg(timeoutMs_ / 1000.0)
                                     .arg(reply_->url().toString());
    else
        result_.transportError = reply_->errorString();
}
