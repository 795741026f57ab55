#pragma once

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <chrono>

// Why the registry refuses a use change notice. The error code is "ZTUKU-" and the two-digit number:
//   01 the body is not a JSON object           09 no animal number, or no such animal of the producer
//   02 no producer number                      10 no holding number, or the animal is of another holding
//   03 no "zgloszenie" object                  11 unknown use direction
//   04 unknown producer                        12 unknown use type
//   05 not exactly one position                13 reason of change not matching the codes sent
//   06 species other than cattle               14 a dairy direction for a male
//   07 the date is not a yyyy-MM-dd date       15 the animal's earlier notice is still being verified
//   08 the date is after today
enum class SimRefusal {
    NotAnObject = 1,
    NoProducerNumber,
    NoForm,
    UnknownProducer,
    NotOnePosition,
    NotCattle,
    BadDate,
    FutureDate,
    UnknownAnimal,
    OtherHolding,
    UnknownDirection,
    UnknownType,
    WrongReason,
    DairyMale,
    StillVerified,
};

// One entry of an answer's "bledy".
QJsonObject Refusal(SimRefusal reason, const QString& text);

// One animal's use change as the client sends it; type and direction stay empty when they are not to change.
struct SimUseChangeNotice {
    QString producer;
    QString unit;
    QString holding;
    QString tag;
    QString type;
    QString direction;
};

// The notice in a request body; whatever the body itself shows wrong is added to errors.
SimUseChangeNotice ReadUseChange(const QByteArray& body, QJsonArray& errors);

// What the animal's own record forbids: another holding, a dairy direction for a male.
void CheckAnimal(const QJsonObject& animal, const QString& animalHolding, const SimUseChangeNotice& notice,
                 QJsonArray& errors);

// An accepted notice: the document in the registry's shape and the notice it waits to apply.
struct SimUseChangeDocument {
    QJsonObject document;
    SimUseChangeNotice notice;
    std::chrono::steady_clock::time_point submitted;
    bool approved = false;

    QString number() const;
    QDateTime received() const;
};

// A document of the counter's number, being verified from now on.
SimUseChangeDocument NewSimUseChangeDocument(const SimUseChangeNotice& notice, int counter);

// Marks the document approved and gives the animal (null when gone) its new type and direction.
void ApproveUseChange(SimUseChangeDocument& document, QJsonObject* animal);
