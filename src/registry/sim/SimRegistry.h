#pragma once

#include "registry/sim/RegistrySimulator.h"
#include "registry/sim/SimFrontDoor.h"
#include "registry/sim/SimUseChange.h"

#include <QHash>
#include <QJsonArray>

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace httplib {
class Server;
struct Request;
struct Response;
} // namespace httplib

// The simulated registry's behaviour behind the HTTP server; every handler runs
// on one of the server's threads, so all state is guarded by one mutex.
class SimRegistry {
public:
    SimRegistry(SimDataset data, SimOptions options);

    void install(httplib::Server& server);
    SimStats stats() const;
    void setOptions(const SimOptions& options);
    bool losesAnswers() const;
    // How the answer to this request is lost on its way back, if it is.
    AnswerLoss lossOf(const QByteArray& requestHead, const QByteArray& body) const;

private:
    struct Answer {
        int status = 200;
        QByteArray body;
    };
    using Handler = Answer (SimRegistry::*)(const httplib::Request&);

    void serve(Handler handler, bool needsToken, const httplib::Request& request, httplib::Response& response);
    void enter();
    void leave();
    void pause(int milliseconds) const;

    Answer token(const httplib::Request& request);
    Answer holdings(const httplib::Request& request);
    Answer animalList(const httplib::Request& request);
    Answer animal(const httplib::Request& request);
    Answer documents(const httplib::Request& request);
    Answer useChange(const httplib::Request& request);
    Answer spoiledUseChange(const SimFaults& faults, const QString& tag) const;
    void checkInRegistry(const SimUseChangeNotice& notice, QJsonArray& errors);
    QString record(const SimUseChangeNotice& notice);
    QJsonArray documentsOf(const httplib::Request& request, QStringList& tags) const;
    void approveDue();

    const SimProducer* producer(const QString& number) const;
    QJsonObject* findAnimal(const QString& producerNumber, const QString& tag, QString* holding = nullptr);
    SimOptions options() const;
    Answer spoiled(const QSet<QString>& httpError, const QSet<QString>& komunikat, const QSet<QString>& notJson,
                   const QString& key, const QString& komunikatText) const;

    struct AnimalPlace {
        std::size_t producer, holding, animal;
    };
    void indexAnimals();

    mutable std::mutex mutex_;
    std::condition_variable slotFree_;
    SimDataset data_;
    SimOptions options_;
    SimStats stats_;
    QHash<QString, AnimalPlace> animalIndex_; // producer number + "/" + ear tag
    QSet<QString> tokens_;
    std::vector<SimUseChangeDocument> documents_;
    int active_ = 0;
    int documentCounter_ = 0;
};
