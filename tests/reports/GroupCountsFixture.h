#pragma once

#include "analysis/GroupCatalogue.h"
#include "core/tables/WorkingTables.h"

#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;

// A count written by hand into one group row of one slot's table.
struct GroupCount {
    int slot = 0;
    int id = 0;
    int ilosc = 0;
    int iloscPom = 0;
};
Q_DECLARE_METATYPE(GroupCount)

inline QString HerdCode(int slot)
{
    return u"%1"_s.arg(slot, 3, 10, QLatin1Char('0'));
}

inline void SetGroupCount(WorkingTables& tables, const GroupCount& count)
{
    Table& table = tables.mdGT(count.slot);
    const int idField = table.requireField(u"ID");
    int row = 0;
    while (row < table.recordCount() && AsInteger(table.at(row, idField)) != count.id)
        ++row;
    QVERIFY2(row < table.recordCount(), qPrintable(u"no group %1"_s.arg(count.id)));
    table.setReadOnly(false);
    table.moveTo(row);
    table.edit();
    table.setValue(u"Ilosc", count.ilosc);
    table.setValue(u"IloscPom", count.iloscPom);
    table.post();
    tables.restoreReadOnly(table);
}

// The herd slots named "001", "002" … after their number; those listed are shown.
inline void ShowHerds(WorkingTables& tables, const QList<int>& shown)
{
    for (int slot = 1; slot < HerdSlotCount; ++slot) {
        THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
        herd.Code = HerdCode(slot);
        herd.Visible = shown.contains(slot);
    }
}

// The whole catalogue (default limits, every kind ticked) in tables that hold
// no group rows yet, then the counts.
inline void FillGroups(WorkingTables& tables, const std::vector<GroupCount>& counts, bool buildCatalogue = true)
{
    if (buildCatalogue) {
        for (int slot = 0; slot < HerdSlotCount; ++slot)
            tables.mdGT(slot).open();
        RebuildGroupCatalogue(tables, AgeLimits::defaults(), WelfareFlags{});
    }
    for (const GroupCount& count : counts)
        SetGroupCount(tables, count);
}

// A group's count as the tables hold it, read apart from the chart's own code.
inline int OverallCount(WorkingTables& tables, int id)
{
    const Table& table = tables.mdGT00();
    for (int row = 0; row < table.recordCount(); ++row)
        if (AsInteger(table.at(row, table.fieldIndex(u"ID"))) == id)
            return AsInteger(table.at(row, table.fieldIndex(u"Ilosc"))) +
                   AsInteger(table.at(row, table.fieldIndex(u"IloscPom")));
    return 0;
}

// Three herds counted much as a demo download counts them: each group's herd
// counts add up to its overall count.
inline std::vector<GroupCount> DemoLikeCounts()
{
    const int byHerd[][4] = {
        // id, herd 001, herd 002, herd 003
        {GroupId::SucklerCows, 6, 0, 2},
        {GroupId::SucklerMothers, 4, 0, 1},
        {GroupId::Fattening, 3, 5, 0},
        {GroupId::FatteningTo150, 1, 2, 0},
        {GroupId::Fattening150To220, 2, 3, 0},
        {GroupId::DairyCows, 18, 7, 11},
        {GroupId::BeefTo150, 2, 1, 0},
        {GroupId::Calves, 4, 2, 3},
        {GroupId::FemaleCalves, 2, 1, 2},
        {GroupId::Heifers6To19, 5, 3, 4},
        {GroupId::Heifers19To24, 2, 0, 3},
        {GroupId::Cows, 21, 9, 14},
        {GroupId::Bulls, 3, 1, 0},
        {GroupId::Unaccounted, 1, 0, 1},
    };
    std::vector<GroupCount> counts;
    for (const auto& row : byHerd) {
        const int id = row[0];
        // A block's first row counts in "Ilosc", the rows under it in "IloscPom".
        const bool heading = id == GroupId::SucklerCows || id == GroupId::Fattening || id == GroupId::DairyCows ||
                             id == GroupId::Calves || id >= GroupId::Heifers6To19;
        const auto count = [&](int slot, int value) {
            return heading ? GroupCount{slot, id, value, 0} : GroupCount{slot, id, 0, value};
        };
        counts.push_back(count(0, row[1] + row[2] + row[3]));
        for (int herd = 1; herd <= 3; ++herd)
            counts.push_back(count(herd, row[herd]));
    }
    return counts;
}
