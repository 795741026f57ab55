#include "registry/sim/SimDataset.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

SimDataset SimDataset::fromJson(const QJsonObject& root)
{
    SimDataset data;
    for (const QJsonValue producerValue : root.value(u"producers").toArray()) {
        const QJsonObject p = producerValue.toObject();
        SimProducer producer{
            p.value(u"numerProducenta").toString(), p.value(u"login").toString(), p.value(u"password").toString(), {}};
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
            object.insert(u"zwierzeta"_s, animalArray);
            holdingArray.append(object);
        }
        producerArray.append(QJsonObject{{u"numerProducenta"_s, producer.numerProducenta},
                                         {u"login"_s, producer.login},
                                         {u"password"_s, producer.password},
                                         {u"holdings"_s, holdingArray}});
    }
    return {{u"producers"_s, producerArray}};
}
