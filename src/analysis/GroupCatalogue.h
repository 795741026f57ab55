#pragma once

#include "analysis/AgeLimits.h"
#include "analysis/WelfareFlags.h"

#include <QString>

#include <vector>

class Table;
class WorkingTables;

enum class GroupBlock { SucklerCows, Fattening, Dairy };

struct GroupRow {
    int id = 0;
    GroupBlock block = GroupBlock::Dairy;
    QString caption;  // "GT"
    QString ageRange; // "ZakresWieku"
};

// The rows of the catalogue by their "ID"; the blank rows separate the blocks.
namespace GroupId {
enum : int {
    SucklerCows = 1,
    SucklerMothers = 2,
    SucklerFattenersTo300 = 3,
    SucklerCalvesTo150 = 4,
    SucklerCalves150To220 = 5,
    SucklerCalvesOver220 = 6,
    SucklerHeifers6To19 = 7,
    SucklerHeifers19To24 = 8,
    SucklerBlank = 9,
    Fattening = 10,
    FatteningTo150 = 11,
    Fattening150To220 = 12,
    Fattening220To300 = 13,
    Fattening300To450 = 14,
    FatteningOver450 = 15,
    FatteningBlank = 16,
    DairyCows = 17,
    DairyBlank = 18,
    BeefTo300 = 19,
    BeefTo150 = 20,
    Beef150To220 = 21,
    Beef220To300 = 22,
    BeefOver300 = 23,
    Beef300To450 = 24,
    BeefOver450 = 25,
    Calves = 26,
    CalvesTo150 = 27,
    Calves150To220 = 28,
    CalvesOver220 = 29,
    FemaleCalves = 30,
    MaleCalves = 31,
    Heifers6To19 = 32,
    Heifers19To24 = 33,
    Cows = 34,
    Bulls = 35,
    BreedingBulls = 36,
    CowsWithCalvesTo150 = 37,
    CowsWithCalves150To220 = 38,
    CowsWithCalves220To300 = 39,
    Unaccounted = 40,
};
} // namespace GroupId

// The range texts of the configurable rows, built from the limits.
struct GroupRangeTexts {
    explicit GroupRangeTexts(const AgeLimits& limits);
    QString mamekCalvesTo150, mamekCalves150To220, mamekCalvesOver220;
    QString opasowTo150, opasow150To220, opasow220To300, opasow300To450, opasowOver450;
    QString bydloTo150, bydlo150To220, bydlo220To300, bydlo300To450, bydloOver450;
    QString calvesTo150, calves150To220, calvesOver220;
};

// The rows of the catalogue that exist for the ticked kinds, in ID order.
std::vector<GroupRow> CatalogueRows(const AgeLimits& limits, WelfareFlags flags);

// Writes the catalogue, with zero counts, into every one of the 21 group tables.
void RebuildGroupCatalogue(WorkingTables& tables, const AgeLimits& limits, WelfareFlags flags);

// The animals a group row counts: "Ilosc" plus "IloscPom" (a block's first row
// counts in the one, the rows under it in the other).
int GroupRowCount(const Table& groups, int row);
