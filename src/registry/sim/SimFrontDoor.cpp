#include "registry/sim/SimFrontDoor.h"

#include <QList>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
constexpr int PollMs = 100;
constexpr qsizetype MaxHead = 64 * 1024;
constexpr qsizetype MaxBody = 256 * 1024 * 1024;

struct Message {
    QByteArray head; // the start line and the headers, up to and with the empty line
    QByteArray body;
};

sockaddr_in Loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool SendAll(int socket, const QByteArray& bytes)
{
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n =
            ::send(socket, bytes.constData() + sent, static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (n <= 0)
            return false;
        sent += n;
    }
    return true;
}

// More bytes into the buffer; false at the end of the connection.
bool Receive(int socket, QByteArray& buffer)
{
    char chunk[16384];
    const ssize_t n = ::recv(socket, chunk, sizeof chunk, 0);
    if (n <= 0)
        return false;
    buffer.append(chunk, n);
    return true;
}

qsizetype ContentLength(const QByteArray& head)
{
    for (const QByteArray& line : head.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().toLower() == "content-length")
            return line.mid(colon + 1).trimmed().toLongLong();
    }
    return 0;
}

// One whole request or answer with a Content-Length body; what follows it stays in the buffer.
bool ReadMessage(int socket, QByteArray& buffer, Message& message)
{
    qsizetype end = -1;
    while ((end = buffer.indexOf("\r\n\r\n")) < 0) {
        if (buffer.size() > MaxHead || !Receive(socket, buffer))
            return false;
    }
    message.head = buffer.left(end + 4);
    const qsizetype length = ContentLength(message.head);
    if (length < 0 || length > MaxBody)
        return false;
    while (buffer.size() < end + 4 + length)
        if (!Receive(socket, buffer))
            return false;
    message.body = buffer.mid(end + 4, length);
    buffer.remove(0, end + 4 + length);
    return true;
}

// The request on a connection of its own to the server, and its whole answer.
bool AskServer(int port, const Message& request, Message& answer)
{
    const int server = ::socket(AF_INET, SOCK_STREAM, 0);
    if (server < 0)
        return false;
    const sockaddr_in address = Loopback(port);
    QByteArray buffer;
    const bool answered = ::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                          SendAll(server, request.head + request.body) && ReadMessage(server, buffer, answer);
    ::close(server);
    return answered;
}

void Reset(int socket)
{
    const linger abortive{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &abortive, sizeof abortive);
}

// Until the client closes its end, or the door closes.
void WaitForClientToLeave(int socket, const std::atomic<bool>& stopping)
{
    QByteArray ignored;
    pollfd watched{socket, POLLIN, 0};
    while (!stopping) {
        if (::poll(&watched, 1, PollMs) > 0 && !Receive(socket, ignored))
            return;
        ignored.clear();
    }
}
} // namespace

SimFrontDoor::SimFrontDoor(int serverPort, Judge judge) : serverPort_(serverPort), judge_(std::move(judge)) {}

SimFrontDoor::~SimFrontDoor()
{
    stop();
}

int SimFrontDoor::listen(int port)
{
    listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    const int reuse = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
    sockaddr_in address = Loopback(port);
    socklen_t size = sizeof address;
    if (listener_ < 0 || ::bind(listener_, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::listen(listener_, 64) != 0 || ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        if (listener_ >= 0)
            ::close(listener_);
        listener_ = -1;
        return -1;
    }
    acceptor_ = std::thread([this] { acceptClients(); });
    return ntohs(address.sin_port);
}

void SimFrontDoor::stop()
{
    if (!acceptor_.joinable())
        return;
    stopping_ = true;
    acceptor_.join();
    ::close(listener_);
    std::vector<std::thread> connections;
    {
        const std::lock_guard lock(mutex_);
        for (const int client : clients_)
            ::shutdown(client, SHUT_RDWR);
        connections.swap(connections_);
    }
    for (std::thread& connection : connections)
        connection.join();
}

void SimFrontDoor::acceptClients()
{
    pollfd watched{listener_, POLLIN, 0};
    while (!stopping_) {
        if (::poll(&watched, 1, PollMs) <= 0)
            continue;
        const int client = ::accept(listener_, nullptr, nullptr);
        if (client < 0)
            continue;
        const std::lock_guard lock(mutex_);
        clients_.insert(client);
        connections_.emplace_back([this, client] { serve(client); });
    }
}

void SimFrontDoor::serve(int client)
{
    QByteArray buffer;
    Message request;
    Message answer;
    while (!stopping_ && ReadMessage(client, buffer, request) && AskServer(serverPort_, request, answer)) {
        const AnswerLoss loss = judge_(request.head, request.body);
        if (loss == AnswerLoss::Reset)
            Reset(client);
        if (loss == AnswerLoss::Silence)
            WaitForClientToLeave(client, stopping_);
        if (loss != AnswerLoss::None || !SendAll(client, answer.head + answer.body))
            break;
    }
    forget(client);
}

void SimFrontDoor::forget(int client)
{
    const std::lock_guard lock(mutex_);
    clients_.erase(client);
    ::close(client);
}
