#pragma once

#include "core/tables/Table.h"
#include "gui/grids/GridColumns.h"

#include <QWidget>

class GridFooter;
class QTableView;
class TableModel;

// A read-only grid over a herd's animal table or a group table, with its
// totals in a footer under the columns.
class TableGrid : public QWidget {
    Q_OBJECT

public:
    TableGrid(Table& table, GridKind kind, QWidget* parent = nullptr);

    QTableView* view() const { return view_; }
    TableModel* model() const { return model_; }
    const std::vector<GridColumn>& columns() const;
    QString footerText(const QString& field) const; // empty under a column without a total
    // A group grid is never narrower than its columns: the catalogue is short
    // and read across, so it is shown whole and the animals grid scrolls instead.
    QSize minimumSizeHint() const override;

private:
    void followContentWithColumns();
    void fitColumns();
    void updateFooter();

    GridKind kind_;
    TableModel* model_;
    QTableView* view_;
    GridFooter* footer_;
    std::vector<FooterCell> footerCells_;
};
