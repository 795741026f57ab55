#pragma once

#include "analysis/AgeLimits.h"
#include "analysis/WelfareFlags.h"

#include <QString>

#include <array>
#include <functional>

class WorkingTables;
class Table;

// What the analysis needs to know of one animal. The calf age is asked for
// only when a cow reaches the last step of the dairy block.
struct AnimalFacts {
    QString sexCode;      // "XX" for a female
    QString useType;      // "typUzytkowy" code
    QString useDirection; // "kierunekUzytkownia" code
    int age = 0;          // months on the reference date
    bool written = true;  // false when the animal could not be written to mdRZ00
    std::function<int()> calfAge;
};

// Sorts animals into the group catalogue: counts them in the summary and the
// herd's group tables and marks their current rows in mdRZ00 and the herd table.
class WelfareAnalysis {
public:
    WelfareAnalysis(WorkingTables& tables, const AgeLimits& limits, WelfareFlags flags);

    void analyse(const AnimalFacts& animal, int slot);

private:
    struct Animal;
    enum class Column { Ilosc = 3, IloscPom = 4 };

    void blockSucklerCows(Animal& a) const;
    void blockFattening(Animal& a) const;
    void blockDairy(Animal& a) const;
    void dairyFattening(Animal& a) const;
    void dairyCalves(Animal& a) const;
    void dairyCowsAndBulls(Animal& a) const;
    void dairySucklerCows(Animal& a) const;

    void main(Animal& a, int id, const QString& code, const QString& where) const;
    void sub(const Animal& a, int id) const;
    void count(int slot, int id, Column column) const;
    void mark(const Animal& a, const QString& summaryCode, const QString& herdCode, const QString& where) const;
    void countIn(Table& table, int id, Column column) const;
    int rowOfGroup(const Table& table, int id) const;

    WorkingTables& tables_;
    AgeLimits limits_;
    WelfareFlags flags_;
    std::array<int, 41> rowOfId_{}; // where each ID sits when the catalogue matches the ticks
};
