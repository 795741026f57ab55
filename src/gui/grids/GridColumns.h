#pragma once

#include <QString>

#include <vector>

// One column of a grid: the Qt object name it is known by ("clNumerIdentyfikacyjny"),
// the table field it shows, its header caption and how its cells are aligned.
struct GridColumn {
    QString objectName;
    QString field;
    QString caption;
    Qt::Alignment alignment;
};

// Asked of a model's horizontal header: the column's object name.
inline constexpr int ColumnObjectNameRole = Qt::UserRole + 1;

enum class GridKind { HerdAnimals, Groups };

enum class FooterKind { Count, Sum };

// A total shown in the footer under the column of `field`.
struct FooterCell {
    QString field;
    FooterKind kind;
};

std::vector<GridColumn> HerdAnimalColumns();
std::vector<GridColumn> GroupColumns();
std::vector<GridColumn> SummaryColumns(); // "Z" first, bound to "ZAZNACZONE"
std::vector<GridColumn> ColumnsFor(GridKind kind);

std::vector<FooterCell> AnimalFooterCells(); // animals and mothers
std::vector<FooterCell> FooterCellsFor(GridKind kind);

// Index of the column showing `field`, -1 when no column shows it.
int ColumnOfField(const std::vector<GridColumn>& columns, const QString& field);
