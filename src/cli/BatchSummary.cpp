#include "cli/BatchSummary.h"

#include <QStringList>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {
constexpr int ColumnCount = 7;
using Cells = std::array<QString, ColumnCount>;
constexpr std::array<bool, ColumnCount> RightAligned{false, false, true, true, true, true, false};

Cells Header()
{
    return {u"Producent"_s, u"Nazwa"_s, u"Stada"_s, u"Zwierzęta"_s, u"Niepełne stada"_s, u"Ponad limit"_s, u"Stan"_s};
}

Cells CellsOf(const BatchSummaryLine& line)
{
    const auto number = [&line](int value) { return line.counted ? QString::number(value) : u"-"_s; };
    return {line.producerNumber,    line.name, number(line.herds), number(line.animals), number(line.incompleteHerds),
            number(line.overLimit), line.state};
}

QString Row(const Cells& cells, const std::array<qsizetype, ColumnCount>& widths)
{
    QStringList row;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const bool last = i + 1 == cells.size();
        row.append(RightAligned[i] ? cells[i].rightJustified(widths[i])
                   : last          ? cells[i]
                                   : cells[i].leftJustified(widths[i]));
    }
    return row.join(u"  "_s) + u'\n';
}
} // namespace

QString BatchSummary(const std::vector<BatchSummaryLine>& lines)
{
    std::vector<Cells> rows{Header()};
    for (const BatchSummaryLine& line : lines)
        rows.push_back(CellsOf(line));
    std::array<qsizetype, ColumnCount> widths{};
    for (const Cells& cells : rows)
        for (std::size_t i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], cells[i].size());
    QString text;
    for (const Cells& cells : rows)
        text += Row(cells, widths);
    return text;
}
