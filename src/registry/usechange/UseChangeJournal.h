#pragma once

#include "framework/HalvarnError.h"

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

enum class JournalEvent { Sent, Accepted, Refused, Unconfirmed, Status };

class JournalError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
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

private:
    QString path_;
    QString producer_;
};
