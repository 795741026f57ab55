#pragma once

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>

#include <memory>
#include <stdexcept>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

// A failure of the transport that is not an HTTP status: no connection, a
// time-out, a TLS error. It ends the operation that was asking.
class RegistryError : public std::runtime_error {
public:
    explicit RegistryError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString message() const { return QString::fromUtf8(what()); }
};

// The outcome of one request once it has finished.
struct HttpResult {
    int status = 0;          // HTTP status, 0 when none came
    QString statusLine;      // "HTTP/1.1 500 Internal Server Error"
    QByteArray body;
    QString transportError;  // set when no HTTP answer came (see RegistryError)

    bool httpError() const { return transportError.isEmpty() && status >= 400; }
};

// One request in flight, with its own time-out. Waiting runs a local event
// loop, so a window keeps painting while the registry answers.
class HttpExchange {
public:
    enum class Verb { Get, Post };
    HttpExchange(QNetworkAccessManager& network, Verb verb, QNetworkRequest request, QByteArray body, int timeoutMs);
    ~HttpExchange();
    HttpExchange(const HttpExchange&) = delete;
    HttpExchange& operator=(const HttpExchange&) = delete;

    bool finished() const;
    const HttpResult& wait();
    void abort();

private:
    void collect();

    std::unique_ptr<QNetworkReply> reply_;
    std::unique_ptr<QTimer> timer_;
    bool timedOut_ = false;
    bool sent_ = false;
    bool collected_ = false;
    int timeoutMs_;
    HttpResult result_;
};
