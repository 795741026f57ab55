#pragma once

#include "core/tables/WorkingTables.h"
#include "registry/records/ZZIInfo.h"

#include <QString>

#include <array>

class HalvarnSession;
class TdmIRZ_PLUS;
class WelfareAnalysis;
class TStadoClass;

enum class DownloadOutcome {
    NotStarted, // no producer number, or the user kept the loaded data
    Completed,  // ran to its end and read every active herd whole
    Incomplete, // ran to its end, but at least one herd ended early (see THerdSlot::Incomplete)
    Stopped,    // ended early: log-in, holdings, an unexpected error, or cancelled
};

// "Pobieranie danych": downloads the producer's active herds and their animals,
// fills the working tables and counts every animal into the groups.
class DownloadCommand {
public:
    DownloadCommand(HalvarnSession& session, TdmIRZ_PLUS& registry);

    DownloadOutcome run();

private:
    // How far the reading of one herd got, for the line of a herd that ends early.
    struct HerdRead {
        QString number; // holding number
        QString code;
        int slot = 0;
        qsizetype listed = -1; // animals on the list; -1 while there is no list
        qsizetype read = 0;
    };

    DownloadOutcome download();
    void normaliseDates();
    bool readHerdList(OwningList<TStadoClass>& herds);
    void readHerd(const TStadoClass& herd, int index, WelfareAnalysis& analysis);
    bool claimSlot(const HerdRead& herd);
    QString readHerdAnimals(HerdRead& herd, int index, WelfareAnalysis& analysis);
    QString readAnimals(const OwningList<TZZIInfoClass>& animals, HerdRead& herd, WelfareAnalysis& analysis);
    void markIncomplete(const HerdRead& herd, const QString& reason);
    THerdSlot& showSlot(const HerdRead& herd);
    QString fail(const QString& text);
    bool testBranch() const;

    HalvarnSession& session_;
    TdmIRZ_PLUS& registry_;
    TDateTime stateDate_ = EmptyDate;
    TDateTime referenceDate_ = EmptyDate;
    int activeHerds_ = 0;
    int incompleteHerds_ = 0;
    int bornAfterReference_ = 0;
    std::array<QString, HerdSlotCount> slotHolders_; // holding number that took each slot
};
