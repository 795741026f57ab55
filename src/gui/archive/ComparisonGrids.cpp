#include "gui/archive/ComparisonGrids.h"

#include "core/archive/DownloadComparison.h"

#include <QHeaderView>
#include <QTableWidget>

using namespace Qt::StringLiterals;

namespace {
constexpr Qt::Alignment Left = Qt::AlignLeft | Qt::AlignVCenter;
constexpr Qt::Alignment Right = Qt::AlignRight | Qt::AlignVCenter;
constexpr Qt::Alignment Centre = Qt::AlignCenter;

void SetUp(QTableWidget& grid, const QStringList& headings)
{
    grid.setColumnCount(static_cast<int>(headings.size()));
    grid.setHorizontalHeaderLabels(headings);
    grid.setSelectionBehavior(QAbstractItemView::SelectRows);
    grid.setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid.verticalHeader()->hide();
    grid.horizontalHeader()->setStretchLastSection(true);
}

QTableWidgetItem* Cell(const QString& text, Qt::Alignment alignment)
{
    auto* item = new QTableWidgetItem(text);
    item->setTextAlignment(alignment);
    return item;
}

QString Age(const std::optional<int>& age)
{
    return age ? QString::number(*age) : QString();
}

QTableWidgetItem* DifferenceCell(int difference)
{
    QTableWidgetItem* item =
        Cell(difference > 0 ? u"+"_s + QString::number(difference) : QString::number(difference), Right);
    if (difference != 0)
        item->setForeground(difference > 0 ? QColor(0, 128, 0) : QColor(200, 0, 0));
    return item;
}

// Rows are filled with the view's updates held back, so a long list paints once.
template <class Rows, class FillRow> void Fill(QTableWidget& grid, const Rows& rows, FillRow fillRow)
{
    grid.setUpdatesEnabled(false);
    grid.clearContents();
    grid.setRowCount(static_cast<int>(rows.size()));
    int row = 0;
    for (const auto& item : rows)
        fillRow(row++, item);
    grid.resizeColumnsToContents();
    grid.setUpdatesEnabled(true);
}
} // namespace

void SetUpAnimalsGrid(QTableWidget& grid)
{
    SetUp(grid, {u"Zmiana"_s, u"Stado"_s, u"Numer identyfikacyjny"_s, u"Płeć"_s, u"Data urodzenia"_s, u"Wiek A"_s,
                 u"Wiek B"_s, u"Grupa A"_s, u"Grupa B"_s});
}

void SetUpGroupsGrid(QTableWidget& grid)
{
    SetUp(grid, {u"ID"_s, u"Grupa technologiczna"_s, u"Ilość A"_s, u"Ilość B"_s, u"Różnica"_s});
}

void ShowAnimals(QTableWidget& grid, const DownloadComparison& comparison)
{
    Fill(grid, comparison.animals(), [&grid](int row, const AnimalDifference& d) {
        const std::pair<QString, Qt::Alignment> cells[]{{AnimalChangeText(d.change), Left},
                                                        {d.herd, Centre},
                                                        {d.earTag, Left},
                                                        {d.sex, Left},
                                                        {d.birthDate.toString(u"dd.MM.yyyy"_s), Centre},
                                                        {Age(d.ageA), Right},
                                                        {Age(d.ageB), Right},
                                                        {d.groupA, Left},
                                                        {d.groupB, Left}};
        int column = 0;
        for (const auto& [text, alignment] : cells)
            grid.setItem(row, column++, Cell(text, alignment));
    });
}

void ShowGroups(QTableWidget& grid, const DownloadComparison& comparison)
{
    Fill(grid, comparison.groups(), [&grid](int row, const GroupCountComparison& g) {
        grid.setItem(row, 0, Cell(QString::number(g.id), Right));
        grid.setItem(row, 1, Cell(g.caption, Left));
        grid.setItem(row, 2, Cell(QString::number(g.countA), Right));
        grid.setItem(row, 3, Cell(QString::number(g.countB), Right));
        grid.setItem(row, 4, DifferenceCell(g.difference()));
    });
}
