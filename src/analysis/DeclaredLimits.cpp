#include "analysis/DeclaredLimits.h"

#include "analysis/GroupCatalogue.h"
#include "core/tables/Table.h"

using namespace Qt::StringLiterals;

namespace {
struct DeclaredRow {
    int groupId;
    const char* name;
};

// In the producer list's order. A suckler cow is counted in "  - mamki"; the
// block's first row also counts the calves and heifers that go with the cows.
constexpr DeclaredRow Rows[DeclaredGroupCount] = {
    {GroupId::SucklerMothers, "krów mamek"},
    {GroupId::FatteningTo150, "opasów < 150"},
    {GroupId::Fattening150To220, "opasów > 150 < 220"},
    {GroupId::Fattening220To300, "opasów > 220 < 300"},
    {GroupId::Fattening300To450, "opasów > 300 < 450"},
    {GroupId::FatteningOver450, "opasów > 450"},
    {GroupId::DairyCows, "krów mlecznych"},
};

const DeclaredRow& RowOf(DeclaredGroup group)
{
    return Rows[static_cast<int>(group)];
}
} // namespace

int DeclaredGroupRow(DeclaredGroup group)
{
    return RowOf(group).groupId;
}

QString DeclaredGroupName(DeclaredGroup group)
{
    return QString::fromUtf8(RowOf(group).name);
}

QStringList ApplyDeclaredLimits(Table& overallGroups, const DeclaredLimits& limits)
{
    const int idField = overallGroups.requireField("ID");
    const int limitField = overallGroups.requireField("Limit");
    const bool readOnly = overallGroups.readOnly();
    overallGroups.setReadOnly(false);
    QStringList exceeded;
    for (int i = 0; i < DeclaredGroupCount; ++i) {
        const int limit = limits[static_cast<std::size_t>(i)];
        const auto group = static_cast<DeclaredGroup>(i);
        if (limit <= 0 || !overallGroups.locate(idField, qint32(DeclaredGroupRow(group))))
            continue;
        overallGroups.edit();
        overallGroups.setValue(limitField, qint32(limit));
        overallGroups.post();
        const int count = GroupRowCount(overallGroups, overallGroups.recNo());
        if (count > limit)
            exceeded.append(
                u"Przekroczono zadeklarowaną liczbę: %1 — jest %2, zadeklarowano %3"_s.arg(DeclaredGroupName(group))
                    .arg(count)
                    .arg(limit));
    }
    overallGroups.setReadOnly(readOnly);
    return exceeded;
}

bool OverLimit(const Table& groups, int row)
{
    const int limitField = groups.fieldIndex("Limit");
    if (limitField < 0)
        return false;
    const int limit = AsInteger(groups.at(row, limitField));
    return limit > 0 && GroupRowCount(groups, row) > limit;
}

int CountOverLimit(const Table& groups)
{
    int over = 0;
    for (int row = 0; row < groups.recordCount(); ++row)
        over += OverLimit(groups, row) ? 1 : 0;
    return over;
}
