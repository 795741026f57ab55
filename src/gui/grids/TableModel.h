#pragma once

#include "core/tables/Table.h"
#include "gui/grids/GridColumns.h"

#include <QAbstractTableModel>

// A read-only item model over a working table: one row per record, one column
// per grid column, cell texts as a grid shows them. It follows the table as its
// observer and unregisters itself when destroyed; the table must outlive it.
class TableModel : public QAbstractTableModel, public TableObserver {
    Q_OBJECT

public:
    TableModel(Table& table, std::vector<GridColumn> columns, QObject* parent = nullptr);
    ~TableModel() override;

    Table& table() const { return table_; }
    const std::vector<GridColumn>& columns() const { return columns_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    void tableReset() override;
    void rowInserted(int row) override;
    void rowChanged(int row) override;
    void rowRemoved(int row) override;

private:
    Table& table_;
    std::vector<GridColumn> columns_;
    std::vector<int> fields_; // table field of each column
    bool hasLimits_;          // a groups table, whose rows over their "Limit" are shown red
    int rows_ = 0;            // as last told, so the view never sees a count ahead of the notifications
};

// Header data shared by the grids' models.
QVariant ColumnHeaderData(const GridColumn& column, int role);
