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
        QByteArray target;                     // path and query, as sent
        QHash<QByteArray, QByteArray> headers; // lower-case names
        QByteArray body;
    };
    // How an answer goes wrong after its status line.
    enum class Break {
        None,
        CutAfterHeaders,   // promises more body than it sends, then closes
        StallAfterHeaders, // promises more body than it sends, then stays silent
    };
    struct Reply {
        Reply(int code = 200, QByteArray answer = {}, int delay = 0, QByteArray statusText = {},
              Break breaking = Break::None, QByteArray redirectTo = {})
            : status(code), body(std::move(answer)), delayMs(delay), reason(std::move(statusText)), broken(breaking),
              location(std::move(redirectTo))
        {}
        int status;
        QByteArray body;
        int delayMs;
        QByteArray reason; // the status line's text; a usual one when empty
        Break broken;
        QByteArray location; // the Location header of a redirect
    };
    static Reply Redirect(const QByteArray& location) { return {302, {}, 0, "Found", Break::None, location}; }
    static Reply Broken(Break broken, QByteArray body = "{\"lista") { return {200, std::move(body), 0, {}, broken}; }
    static Reply Silent() { return {0}; } // never answers
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
