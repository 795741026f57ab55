#include "registry/sim/SimDataset.h"

#include <QJsonArray>

SimDataset SimDataset::fromJson(const QJsonObject& root)
{
    SimDataset data;
    for (const QJsonValue producerValue : root.value(u"producers").toArray()) {
        const QJsonObject p = producerValue.toObject();
        SimProducer producer{p.value(u"numerProducenta").toString(), p.value(u"login").toString(),
                             p.value(u"password").toString(), {}};
        for (const QJsonValue holdingValue : p.value(u"holdings").toArray()) {
            QJsonObject holding = holdingValue.toObject();
            SimHolding sim;
            for (const QJsonValue animal : holding.take(u"zwierzeta").toArray())
                sim.animals.push_back(animal.toObject());
            sim.holding = holding;
            producer.holdings.push_back(std::move(sim));
        }
        data.producers.push_back(std::move(producer));
    }
    return data;
}

QJsonObject SimDataset::toJson() const
{
    QJsonArray producerArray;
    for (const SimProducer& producer : producers) {
        QJsonArray holdingArray;
        for (const SimHolding& holding : producer.holdings) {
            QJsonObject object = holding.holding;
            QJsonArray animalArray;
            for (const QJsonObject& animal : holding.animals)
                animalArray.append(animal);
            object.insert(QStringLiteral("zwierzeta"), animalArray);
            holdingArray.append(object);
        }
        producerArray.append(QJsonObject{{QStringLiteral("numerProducenta"), producer.numerProducenta},
                                         {QStringLiteral("login"), producer.login},
                                         {QStringLiteral("password"), producer.password},
                                         {QStringLiteral("holdings"), holdingArray}});
    }
    return {{QStringLiteral("producers"), producerArray}};
}
