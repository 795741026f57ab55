#pragma once

#include "registry/sim/SimDataset.h"

#include <QSet>
#include <QStringList>

#include <memory>

// Answers to spoil on purpose: herds are holding numbers, animals ear tags. Use changes are chosen
// by the ear tag of the notice's animal, document lists by the ear tag of any document's animal.
struct SimFaults {
    QSet<QString> httpErrorAnimals, httpErrorHerds;
    QSet<QString> komunikatAnimals, komunikatHerds;
    QSet<QString> notJsonAnimals, notJsonHerds;
    QSet<QString> slowAnimals, slowHerds;
    QSet<QString> httpErrorUseChange, komunikatUseChange, noNumberUseChange, slowUseChange;
    QSet<QString> httpErrorDocuments, komunikatDocuments;
    // The notice is handled as usual, but its answer never reaches the client: the connection is
    // closed, reset, or left silent. Set before the simulator starts: it then listens through a
    // front door that can lose answers.
    QSet<QString> closeAfterUseChange, resetAfterUseChange, silenceAfterUseChange;
    bool komunikatHoldings = false;
    bool notJsonHoldings = false;
    bool httpErrorHoldings = false;
    bool refuseLogin = false;
    int slowMs = 0;
};

struct SimOptions {
    int latencyMs = 0;
    int maxConcurrent = 0;     // 0 = unlimited
    int approveAfterMs = 3000; // a use change notice stays "being verified" this long; 0 = until the next request
    SimFaults faults;
};

struct SimStats {
    int tokenRequests = 0;
    int holdingsRequests = 0;
    int animalListRequests = 0;
    int animalRequests = 0;
    int documentRequests = 0;
    int useChangeRequests = 0; // notices that reached the registry, answered or not
    int maxConcurrentSeen = 0;
    QStringList animalListHerds;
};

// The registry on 127.0.0.1, answering log-in, holdings, animal lists, single
// animals, document lists and use changes in the registry's shapes.
class RegistrySimulator {
public:
    explicit RegistrySimulator(SimDataset data, SimOptions options = {});
    ~RegistrySimulator();
    RegistrySimulator(const RegistrySimulator&) = delete;
    RegistrySimulator& operator=(const RegistrySimulator&) = delete;

    bool start(quint16 port = 0); // returns once listening
    void stop();
    QString baseUrl() const;
    SimStats stats() const;
    void setOptions(const SimOptions& options);

private:
    class Server;
    std::unique_ptr<Server> server_;
};

// The simulator with the demo producer of DemoOptions and the further demo
// producers, listening; null when it cannot listen.
std::unique_ptr<RegistrySimulator> StartDemoRegistry(const DemoOptions& demo = {});
