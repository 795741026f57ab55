#include "registry/sim/RegistrySimulator.h"

#include "registry/sim/HttpLib.h"
#include "registry/sim/SimRegistry.h"

#include <thread>

using namespace Qt::StringLiterals;

class RegistrySimulator::Server {
public:
    Server(SimDataset data, SimOptions options) : registry(std::move(data), std::move(options)) {}

    SimRegistry registry;
    httplib::Server http;
    std::unique_ptr<SimFrontDoor> frontDoor;
    std::thread thread;
    int port = 0;
};

RegistrySimulator::RegistrySimulator(SimDataset data, SimOptions options)
    : server_(std::make_unique<Server>(std::move(data), std::move(options)))
{
    server_->http.new_task_queue = [] { return new httplib::ThreadPool(16); }; // httplib takes ownership
    server_->http.set_tcp_nodelay(true); // answers go out at once, as a real registry's would
    // Every answer closes its connection ("Connection: close"). The program's
    // network manager lives as long as the program, and an idle connection it
    // kept open would hold the simulator's stop until the keep-alive ran out.
    server_->http.set_keep_alive_max_count(1);
    server_->registry.install(server_->http);
}

RegistrySimulator::~RegistrySimulator()
{
    stop();
}

bool RegistrySimulator::start(quint16 port)
{
    if (server_->thread.joinable())
        return true;
    httplib::Server& http = server_->http;
    if (server_->registry.losesAnswers()) {
        const int inner = http.bind_to_any_port("127.0.0.1");
        SimRegistry& registry = server_->registry;
        server_->frontDoor = std::make_unique<SimFrontDoor>(
            inner, [&registry](const QByteArray& head, const QByteArray& body) { return registry.lossOf(head, body); });
        server_->port = inner > 0 ? server_->frontDoor->listen(port) : -1;
    } else {
        server_->port =
            port == 0 ? http.bind_to_any_port("127.0.0.1") : (http.bind_to_port("127.0.0.1", port) ? port : -1);
    }
    if (server_->port <= 0)
        return false;
    server_->thread = std::thread([&http] { http.listen_after_bind(); });
    return true;
}

void RegistrySimulator::stop()
{
    if (!server_->thread.joinable())
        return;
    if (server_->frontDoor)
        server_->frontDoor->stop();
    server_->http.stop();
    server_->thread.join();
}

QString RegistrySimulator::baseUrl() const
{
    return u"http://127.0.0.1:%1"_s.arg(server_->port);
}

SimStats RegistrySimulator::stats() const
{
    return server_->registry.stats();
}

void RegistrySimulator::setOptions(const SimOptions& options)
{
    server_->registry.setOptions(options);
}

std::unique_ptr<RegistrySimulator> StartDemoRegistry(const DemoOptions& demo)
{
    SimDataset data = GenerateDemoDataset(demo);
    for (const DemoOptions& further : FurtherDemoProducers(demo.referenceDate))
        if (further.producerNumber != demo.producerNumber)
            data.producers.push_back(std::move(GenerateDemoDataset(further).producers.front()));
    auto simulator = std::make_unique<RegistrySimulator>(std::move(data));
    if (!simulator->start())
        return nullptr;
    return simulator;
}
