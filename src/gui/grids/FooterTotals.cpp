#include "gui/grids/FooterTotals.h"

#include <numeric>

namespace {
template <class Records> QString FooterText(const Table& table, const FooterCell& cell, const Records& records)
{
    if (cell.kind == FooterKind::Count)
        return QString::number(std::ssize(records));
    const int field = table.requireField(cell.field);
    qint64 sum = 0;
    for (const int record : records)
        if (record < table.recordCount())
            sum += AsInteger(table.at(record, field));
    return QString::number(sum);
}

template <class Records>
QStringList Texts(const Table& table, const std::vector<FooterCell>& cells, const Records& records)
{
    QStringList texts;
    for (const FooterCell& cell : cells)
        texts.append(FooterText(table, cell, records));
    return texts;
}
} // namespace

QStringList FooterTexts(const Table& table, const std::vector<FooterCell>& cells, std::span<const int> records)
{
    return Texts(table, cells, records);
}

QStringList FooterTexts(const Table& table, const std::vector<FooterCell>& cells)
{
    std::vector<int> all(static_cast<std::size_t>(table.recordCount()));
    std::iota(all.begin(), all.end(), 0);
    return Texts(table, cells, all);
}
