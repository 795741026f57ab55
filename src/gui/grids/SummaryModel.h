#pragma once

#include "gui/grids/GridColumns.h"
#include "gui/grids/SummaryLayout.h"

#include <QAbstractItemModel>

// Asked of an index: true for a group row of the summary grid.
inline constexpr int GroupRowRole = Qt::UserRole + 2;

// The item model of the summary grid over mdRZ00: the rows its layout shows,
// as a flat list or under group rows ("Stado: 001 (85)"). The "Z" column is a
// check box that posts "ZAZNACZONE" to the table at once; marked rows are drawn
// red, bold and italic. It follows the table as its observer and keeps views'
// current rows and selections across every re-layout that is not a reset.
class SummaryModel : public QAbstractItemModel, public TableObserver {
    Q_OBJECT

public:
    explicit SummaryModel(Table& mdRZ00, QObject* parent = nullptr);
    ~SummaryModel() override;

    Table& table() const { return table_; }
    const std::vector<GridColumn>& columns() const { return columns_; }
    const SummaryLayout& layout() const { return layout_; }
    int fieldOfColumn(int column) const { return fields_[static_cast<std::size_t>(column)]; }
    QString captionOfField(int field) const;
    static QFont markedFont(); // bold italic

    void setColumnFilter(int field, const QStringList& acceptedTexts);
    void clearFilters();
    void sortByField(int field, Qt::SortOrder order); // -1: table order
    void groupByField(int field);                     // -1: no grouping

    bool isGroupRow(const QModelIndex& index) const;
    int recordAt(const QModelIndex& index) const; // -1 for a group row
    QModelIndex groupIndex(int group) const;
    QModelIndex indexOfRecord(int record, int column = 0) const; // invalid when not shown

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    void tableReset() override;
    void rowInserted(int row) override;
    void rowChanged(int row) override;
    void rowRemoved(int row) override;

private:
    // How record numbers move with a change of the table: +1 from `row` on for an
    // insertion, -1 after `row` (and `row` gone) for a removal.
    struct RecordShift {
        int row = 0;
        int delta = 0;
        int apply(int record) const;
    };
    template <class Change> void relayout(Change&& change, RecordShift shift = {});
    QVariant groupData(const QModelIndex& index, int role) const;
    QVariant recordData(int record, int column, int role) const;
    bool isMarked(int record) const;

    Table& table_;
    std::vector<GridColumn> columns_;
    std::vector<int> fields_; // table field of each column
    int markField_;
    int markColumn_;
    SummaryLayout layout_;
};

// How a grid names a value to the user: "(Puste)" for a blank, the mark as
// "Zaznaczone"/"Niezaznaczone", anything else as it is shown.
QString ValueLabel(const QString& field, const QString& displayText);
