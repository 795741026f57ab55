#pragma once

#include "framework/HalvarnError.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QString>

// One ticked animal and what is sent for it.
struct UseChangeNotice {
    int row = -1; // its row in mdRZ00
    QString herd;
    QString animal;
    QString holding;
    QString tuOld, kuOld; // codes before the change
    QString tuNew, kuNew; // codes sent
};

// NotSent: the notice never left this machine (no connection), so the registry has not received it.
enum class JournalEvent { Sent, Accepted, Refused, Unconfirmed, Status, NotSent };

class JournalError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// What the journal says of the last notice sent for an animal.
struct EarlierNotice {
    enum class Outcome {
        Unanswered,   // sent, and no answer written: the program ended while the notice was out
        Unconfirmed,  // the answer did not arrive whole
        AcceptedOpen, // a document number came, and no final status since
        Settled,      // refused, never sent, or its document reached a final status
    };
    QDateTime sentAt;
    QString direction; // KU_NEW sent
    QString document;
    Outcome outcome = Outcome::Unanswered;

    bool mayStillApply() const { return outcome != Outcome::Settled; }
};

// "TUKU.LOG": every notice is written before it is sent and every answer as
// soon as it is read, one Windows-1250 line each, so what reached the registry
// is known even after a crash or a power cut.
//   date time;producer;herd;animal;TU_OLD;KU_OLD;TU_NEW;KU_NEW;event;document;text
class UseChangeJournal {
public:
    UseChangeJournal(QString path, QString producer);

    // Throws JournalError when the line cannot be written and synced to disk.
    void append(const UseChangeNotice& notice, JournalEvent event, const QString& document = {},
                const QString& text = {}) const;

    const QString& path() const { return path_; }

    // The last notice of each of these animals of the producer. Throws
    // JournalError when the journal cannot be read or has a torn line.
    QHash<QString, EarlierNotice> earlierNotices(const QSet<QString>& animals) const;

private:
    QString path_;
    QString producer_;
};
