#pragma once

#include "framework/HalvarnError.h"

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

class QNetworkAccessManager;
class QNetworkReply;
class QObject;
class QTimer;

// A failure of the transport: no connection, a time-out, a refused redirect,
// an answer too large; or an HTTP error status of a POST, kept in httpStatus().
// It ends the operation that was asking.
class RegistryError : public HalvarnError {
public:
    explicit RegistryError(const QString& message, int httpStatus = 0) : HalvarnError(message), httpStatus_(httpStatus)
    {}
    int httpStatus() const { return httpStatus_; } // 0 when no status line came

private:
    int httpStatus_;
};

// The user asked to stop while a request was waited for; the request is aborted.
class RequestCancelled : public RegistryError {
public:
    RequestCancelled() : RegistryError(u"Przerwano na żądanie użytkownika"_s) {}
};

// A notice that certainly never reached the server: no connection was made, or
// the user stopped before it was written. Sending it again is safe.
class NoticeNotSent : public RegistryError {
public:
    using RegistryError::RegistryError;
};

// What every request of one client shares.
struct ExchangeRules {
    int timeoutMs = 150'000;
    qint64 maxAnswerBytes = 64ll << 20;
    std::function<bool()> cancelRequested;
    // Requests of this client that have left and are not finished; a request
    // still queued behind them for a connection is not timing out.
    std::shared_ptr<int> sentAndOpen = std::make_shared<int>(0);
};

// The outcome of one request once it has finished.
struct HttpResult {
    int status = 0;     // HTTP status, 0 when none came
    QString statusLine; // "HTTP/1.1 500 Internal Server Error"
    QByteArray body;
    QString failure; // set when no whole answer came, in words for the user
    bool cancelled = false;

    bool httpError() const { return failure.isEmpty() && status >= 400; }
};

// One request in flight, with its own time-out and size limit. Waiting runs a
// local event loop, so a window keeps painting while the registry answers, and
// a stop asked for meanwhile aborts the request at once.
class HttpExchange {
public:
    enum class Verb { Get, Post };
    HttpExchange(QNetworkAccessManager& network, Verb verb, QNetworkRequest request, const QByteArray& body,
                 ExchangeRules rules);
    ~HttpExchange();
    HttpExchange(const HttpExchange&) = delete;
    HttpExchange& operator=(const HttpExchange&) = delete;

    const HttpResult& wait();

private:
    enum class Abort { None, TimedOut, TooLarge, RedirectRefused, Cancelled };

    void watchReply();
    void markSent();
    void markFinished();
    void onTimeout();
    void onRedirect(const QUrl& target);
    void readArrived();
    void abortFor(Abort reason);
    bool stopAsked() const;
    void collect();
    QString failureText() const;

    // The reply's teardown: aborted when unfinished, then deleted by the event
    // loop, since Qt's HTTP thread may still be handling it.
    struct LaterDelete {
        void operator()(QNetworkReply* reply) const;
    };
    std::unique_ptr<QObject> listener_; // the context of this exchange's connections to the reply
    std::unique_ptr<QNetworkReply, LaterDelete> reply_;
    std::unique_ptr<QTimer> timer_;
    ExchangeRules rules_;
    QUrl origin_;
    Abort abort_ = Abort::None;
    QString refusedTarget_;
    bool sent_ = false;
    bool counted_ = false; // counted in rules_.sentAndOpen
    bool collected_ = false;
    HttpResult result_;
};

// The registry's own words in an error answer: "komunikat" at its root or in
// its error entries; empty when it has none.
QString RegistryMessageIn(const QByteArray& body);
