#pragma once

#include <QByteArray>
#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>
#include <vector>

// A one-thread HTTP server on 127.0.0.1 that records every request exactly as
// it arrived and answers with whatever the test decides.
class RecordingServer : public QObject {
public:
    struct Request {
        QByteArray method;
        QByteArray target; // path and query, as sent
        QHash<QByteArray, QByteArray> headers; // lower-case names
        QByteArray body;
    };
    struct Reply {
        Reply(int status = 200, QByteArray body = {}, int delayMs = 0, QByteArray reason = {})
            : status(status), body(std::move(body)), delayMs(delayMs), reason(std::move(reason))
        {
        }
        int status;
        QByteArray body;
        int delayMs;
        QByteArray reason; // the status line's text; a usual one when empty
    };
    using Responder = std::function<Reply(const Request&)>;

    explicit RecordingServer(Responder responder);
    QString baseUrl() const;
    const std::vector<Request>& requests() const { return requests_; }
    int mostUnanswered() const { return mostUnanswered_; } // requests waiting for an answer at once

private:
    void accept();
    void readFrom(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const Reply& reply);

    QTcpServer server_;
    Responder responder_;
    std::vector<Request> requests_;
    QHash<QTcpSocket*, QByteArray> pending_;
    int unanswered_ = 0;
    int mostUnanswered_ = 0;
};
