#include "app/grids/GridViewSetup.h"

#include <QAbstractItemView>
#include <QHeaderView>

#include <algorithm>

namespace {
// How many characters a column's values usually take.
int TypicalCharacters(const QString& field)
{
    static const QHash<QString, int> widths{
        {QStringLiteral("ZAZNACZONE"), 3},
        {QStringLiteral("NumerIdentyfikacyjny"), 16},
        {QStringLiteral("DataUrodzenia"), 10},
        {QStringLiteral("TypUzytkowy"), 14},
        {QStringLiteral("KierunekUzytkowania"), 14},
        {QStringLiteral("GdzieRozpatrzono"), 28},
        {QStringLiteral("GT"), 31},
        {QStringLiteral("ZakresWieku"), 17},
    };
    return widths.value(field, 6);
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
    const QFontMetrics metrics = header.fontMetrics();
    const int padding = 2 * metrics.averageCharWidth() + header.style()->pixelMetric(QStyle::PM_HeaderMargin) * 2;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int caption = metrics.horizontalAdvance(columns[i].caption);
        const int values = metrics.averageCharWidth() * TypicalCharacters(columns[i].field);
        header.resizeSection(static_cast<int>(i), std::max(caption, values) + padding);
    }
}
