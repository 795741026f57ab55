#pragma once

#include <QByteArray>

#include <atomic>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

// How the answer to a request is lost on its way back to the client.
enum class AnswerLoss {
    None,
    Close,   // the connection closed cleanly instead of the answer
    Reset,   // the connection reset instead of the answer
    Silence, // no answer, the connection left open until the client gives up
};

// A loopback proxy in front of the simulator's server: every request goes to
// the server and is answered there as usual, but the answer of a request the
// judge names is lost in the way it says, so the server has acted on a
// request whose client never learns of it.
class SimFrontDoor {
public:
    using Judge = std::function<AnswerLoss(const QByteArray& requestHead, const QByteArray& body)>;

    SimFrontDoor(int serverPort, Judge judge);
    ~SimFrontDoor();
    SimFrontDoor(const SimFrontDoor&) = delete;
    SimFrontDoor& operator=(const SimFrontDoor&) = delete;

    int listen(int port); // the port listened on (any free one for 0); -1 when it cannot
    void stop();

private:
    void acceptClients();
    void serve(int client);
    void forget(int client);

    int serverPort_;
    Judge judge_;
    int listener_ = -1;
    std::atomic<bool> stopping_{false};
    std::thread acceptor_;
    std::mutex mutex_;
    std::vector<std::thread> connections_;
    std::set<int> clients_;
};
