#include "support/RecordingServer.h"

#include <QTimer>

using namespace Qt::StringLiterals;

RecordingServer::RecordingServer(Responder responder) : responder_(std::move(responder))
{
    server_.listen(QHostAddress::LocalHost, 0);
    connect(&server_, &QTcpServer::newConnection, this, &RecordingServer::accept);
}

QString RecordingServer::baseUrl() const
{
    return u"http://127.0.0.1:%1"_s.arg(server_.serverPort());
}

void RecordingServer::accept()
{
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void RecordingServer::readFrom(QTcpSocket* socket)
{
    QByteArray& data = pending_[socket];
    data += socket->readAll();
    const qsizetype headerEnd = data.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return;
    Request request;
    const QList<QByteArray> lines = data.left(headerEnd).split('\n');
    const QList<QByteArray> first = lines.front().trimmed().split(' ');
    request.method = first.value(0);
    request.target = first.value(1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        request.headers.insert(lines[i].left(colon).trimmed().toLower(), lines[i].mid(colon + 1).trimmed());
    }
    const qsizetype length = request.headers.value("content-length").toLongLong();
    if (data.size() < headerEnd + 4 + length)
        return;
    request.body = data.mid(headerEnd + 4, length);
    pending_.remove(socket);
    requests_.push_back(request);
    const Reply reply = responder_(request);
    if (reply.status == 0)
        return;
    mostUnanswered_ = std::max(mostUnanswered_, ++unanswered_);
    if (reply.delayMs > 0)
        QTimer::singleShot(reply.delayMs, socket, [this, socket, reply] { answer(socket, reply); });
    else
        answer(socket, reply);
}

void RecordingServer::answer(QTcpSocket* socket, const Reply& reply)
{
    --unanswered_;
    const QByteArray reason = !reply.reason.isEmpty() ? reply.reason
                              : reply.status == 200   ? QByteArray("OK")
                              : reply.status == 401   ? QByteArray("Unauthorized")
                                                      : QByteArray("Internal Server Error");
    const qsizetype promised = reply.body.size() + (reply.broken == Break::None ? 0 : 1000);
    // A redirect keeps the connection for the request that follows it.
    const bool keepOpen = !reply.location.isEmpty() || reply.broken == Break::StallAfterHeaders;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reason +
                      "\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(promised) + "\r\n";
    if (!reply.location.isEmpty())
        head += "Location: " + reply.location + "\r\n";
    if (!keepOpen)
        head += "Connection: close\r\n";
    socket->write(head + "\r\n" + reply.body);
    if (!keepOpen)
        socket->disconnectFromHost();
}
