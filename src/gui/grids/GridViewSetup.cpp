#include "gui/grids/GridViewSetup.h"

#include "core/tables/Table.h"
#include "gui/grids/WidestValue.h"

#include <QAbstractItemView>
#include <QHeaderView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// How many characters a column's values usually take.
int TypicalCharacters(const QString& field)
{
    static const QHash<QString, int> widths{
        {u"ZAZNACZONE"_s, 3},   {u"NumerIdentyfikacyjny"_s, 16}, {u"DataUrodzenia"_s, 10},
        {u"TypUzytkowy"_s, 14}, {u"KierunekUzytkowania"_s, 14},  {u"GdzieRozpatrzono"_s, 28},
        {u"GT"_s, 31},          {u"ZakresWieku"_s, 17},
    };
    return widths.value(field, 6);
}

int StartingWidth(const QHeaderView& header, const GridColumn& column)
{
    const QFontMetrics metrics = header.fontMetrics();
    const int padding = 2 * metrics.averageCharWidth() + header.style()->pixelMetric(QStyle::PM_HeaderMargin) * 2;
    const int caption = metrics.horizontalAdvance(column.caption);
    const int values = metrics.averageCharWidth() * TypicalCharacters(column.field);
    return std::max(caption, values) + padding;
}

int WidestValueOf(const Table& table, const QString& field, const QFontMetrics& metrics)
{
    const int column = table.requireField(field);
    WidestValue widest(metrics);
    for (int row = 0; row < table.recordCount(); ++row)
        widest.add(table.at(row, column));
    return widest.width();
}
} // namespace

void SetUpGridView(QAbstractItemView& view)
{
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setSelectionMode(QAbstractItemView::SingleSelection);
    view.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

void SetUpColumnWidths(QHeaderView& header, const std::vector<GridColumn>& columns)
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        header.resizeSection(static_cast<int>(i), StartingWidth(header, columns[i]));
}

void FitColumnsToContent(QHeaderView& header, const std::vector<GridColumn>& columns, const Table& table,
                         const QFont& valueFont)
{
    const QStyle& style = *header.style();
    const int headerMargin = style.pixelMetric(QStyle::PM_HeaderMargin, nullptr, &header);
    const int captionRoom = 3 * headerMargin + style.pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, &header);
    const QFontMetrics valueMetrics(valueFont);
    const int valueRoom = 2 * (style.pixelMetric(QStyle::PM_FocusFrameHMargin) + 1) + valueMetrics.averageCharWidth();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int caption = header.fontMetrics().horizontalAdvance(columns[i].caption) + captionRoom;
        const int values = WidestValueOf(table, columns[i].field, valueMetrics) + valueRoom;
        header.resizeSection(static_cast<int>(i), std::max({StartingWidth(header, columns[i]), caption, values}));
    }
}
