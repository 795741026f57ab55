#pragma once

#include <QDate>
#include <QJsonObject>
#include <QString>

#include <vector>

using namespace Qt::StringLiterals;

// What the simulated registry knows, kept in the registry's own JSON shapes.
struct SimHolding {
    QJsonObject holding;
    std::vector<QJsonObject> animals;
};

struct SimProducer {
    QString numerProducenta;
    QString login;
    QString password;
    std::vector<SimHolding> holdings;
};

struct SimDataset {
    std::vector<SimProducer> producers;

    // {"producers":[{"numerProducenta","login","password","holdings":[{...holding..., "zwierzeta":[...]}]}]}
    static SimDataset fromJson(const QJsonObject& root);
    QJsonObject toJson() const;
};

struct DemoOptions {
    quint64 seed = 20261123;
    QString producerNumber = u"071234562"_s;
    QString login = u"uzytkownik.testowy.1"_s;
    QString password = u"Zielonka7Kb2!"_s;
    std::vector<int> herdSizes = {120, 85, 140}; // animals of each active herd: dairy, suckler, fattening, …
    QDate referenceDate = QDate::currentDate();
    qint64 firstTag = 5000000000; // ear tags count up from here, so that two producers never share one
};

// A realistic producer: active herds of the given sizes, then an inactive
// holding and an active one without animals. The same seed gives the same data.
SimDataset GenerateDemoDataset(const DemoOptions& options);

// The producers the embedded registry serves beside the demo producer of
// DemoOptions, each with a number, log-in, seed, herds and ear tags of its own.
std::vector<DemoOptions> FurtherDemoProducers(QDate referenceDate);
