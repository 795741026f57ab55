#pragma once

#include "analysis/AgeLimits.h"
#include "analysis/WelfareFlags.h"

#include <QString>

#include <vector>

class WorkingTables;

enum class GroupBlock { SucklerCows, Fattening, Dairy };

struct GroupRow {
    int id = 0;
    GroupBlock block = GroupBlock::Dairy;
    QString caption;  // "GT"
    QString ageRange; // "ZakresWieku"
};

inline constexpr int UnaccountedGroupId = 40; // "NIE ROZLICZONE"

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
