#pragma once

#include "registry/records/ZZIInfo.h"

#include <QString>

class HalvarnSession;
class TdmIRZ_PLUS;
class WelfareAnalysis;
class TStadoClass;

enum class DownloadOutcome {
    NotStarted, // no producer number, or the user kept the loaded data
    Completed,  // ran to its end; herd-level failures included
    Stopped,    // ended early: log-in, holdings, an unexpected error, or cancelled
};

// "Pobieranie danych": downloads the producer's active herds and their animals,
// fills the working tables and counts every animal into the groups.
class DownloadCommand {
public:
    DownloadCommand(HalvarnSession& session, TdmIRZ_PLUS& registry);

    DownloadOutcome run();

private:
    DownloadOutcome download();
    void normaliseDates();
    void writeProducerHeader();
    bool readHerdList(OwningList<TStadoClass>& herds);
    void readHerd(const TStadoClass& herd, int index, WelfareAnalysis& analysis);
    bool readAnimals(const OwningList<TZZIInfoClass>& animals, const QString& code, int slot,
                     WelfareAnalysis& analysis);
    int calfAge(const OwningList<TZZIInfoClass>& animals, const QString& cowNumber) const;
    void fail(const QString& text);

    HalvarnSession& session_;
    TdmIRZ_PLUS& registry_;
    TDateTime stateDate_ = EmptyDate;
    TDateTime referenceDate_ = EmptyDate;
    int activeHerds_ = 0;
    int herdsRead_ = 0;
};

// Age on the reference date of the first animal of the list with this number; 0 when none has it.
int FindAgeInList(const OwningList<TZZIInfoClass>& list, const QString& number, TDateTime referenceDate);
