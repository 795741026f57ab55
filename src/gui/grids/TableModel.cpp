#include "gui/grids/TableModel.h"

#include "analysis/DeclaredLimits.h"

#include <QBrush>

TableModel::TableModel(Table& table, std::vector<GridColumn> columns, QObject* parent)
    : QAbstractTableModel(parent), table_(table), columns_(std::move(columns)),
      hasLimits_(table.fieldIndex("Limit") >= 0), rows_(table.recordCount())
{
    for (const GridColumn& column : columns_)
        fields_.push_back(table_.requireField(column.field));
    table_.addObserver(this);
}

TableModel::~TableModel()
{
    table_.removeObserver(this);
}

int TableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : rows_;
}

int TableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const
{
    // While the table's controls are disabled the table may hold fewer rows than told.
    if (!index.isValid() || index.row() >= table_.recordCount())
        return {};
    const auto column = static_cast<std::size_t>(index.column());
    switch (role) {
    case Qt::DisplayRole: return DisplayText(table_.at(index.row(), fields_[column]));
    case Qt::TextAlignmentRole: return static_cast<int>(columns_[column].alignment);
    case Qt::ForegroundRole:
        return hasLimits_ && OverLimit(table_, index.row()) ? QBrush(QColor(200, 0, 0)) : QVariant();
    default: return {};
    }
}

QVariant ColumnHeaderData(const GridColumn& column, int role)
{
    switch (role) {
    case Qt::DisplayRole: return column.caption;
    case ColumnObjectNameRole: return column.objectName;
    case Qt::TextAlignmentRole: return static_cast<int>(column.alignment);
    case Qt::InitialSortOrderRole: return static_cast<int>(Qt::AscendingOrder);
    default: return {};
    }
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return QAbstractTableModel::headerData(section, orientation, role);
    return ColumnHeaderData(columns_[static_cast<std::size_t>(section)], role);
}

Qt::ItemFlags TableModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren : Qt::NoItemFlags;
}

void TableModel::tableReset()
{
    beginResetModel();
    rows_ = table_.recordCount();
    endResetModel();
}

void TableModel::rowInserted(int row)
{
    beginInsertRows({}, row, row);
    ++rows_;
    endInsertRows();
}

void TableModel::rowChanged(int row)
{
    Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
}

void TableModel::rowRemoved(int row)
{
    beginRemoveRows({}, row, row);
    --rows_;
    endRemoveRows();
}
