#pragma once

#include "core/tables/Table.h"

#include <QSet>
#include <QWidget>

#include <vector>

class ColumnFilterPopup;
class GridFooter;
class QComboBox;
class QLabel;
class QTreeView;
class SummaryModel;
class SummaryTreeView;

// The summary animals grid over mdRZ00: the mark "Z" edited in place, filters
// on column values (header menu, filter bar with "Wyczyść filtr"), sorting by a
// header click, grouping by a column ("Grupuj według:") with collapsible groups,
// and a footer with the number of animals and of mothers among the rows shown.
class SummaryGrid : public QWidget {
    Q_OBJECT

public:
    explicit SummaryGrid(Table& mdRZ00, QWidget* parent = nullptr);

    // mdRZ00 record numbers of the data rows shown now, top to bottom; group
    // rows and the rows of collapsed groups are left out.
    std::vector<int> rowsInDisplayOrder() const;
    void setColumnFilter(const QString& field,
                         const QStringList& acceptedDisplayTexts); // empty: no filter
    void clearFilters();
    void sortByField(const QString& field, Qt::SortOrder order); // empty field: table order
    void groupByField(const QString& field);                     // empty: no grouping
    void setGroupExpanded(int groupIndex, bool expanded);

    QTreeView* view() const;
    SummaryModel* model() const { return model_; }
    QString footerText(const QString& field) const; // empty under a column without a total
    QString filterDescription() const;              // what the filter bar says; empty without a filter
    // The values of a column to check, shown under its header; it deletes itself when closed.
    ColumnFilterPopup* openFilterPopup(const QString& field);

private:
    QWidget* createGroupBar();
    QWidget* createFilterBar();
    void setUpHeader();
    void showHeaderMenu(const QPoint& position);
    void sortIndicatorChanged(int column, Qt::SortOrder order);
    void afterRelayout();
    void restoreExpansion();
    void rememberExpansion(const QModelIndex& index, bool expanded);
    void updateFooter();
    void updateFilterBar();
    void updateGroupChoice();
    void fitColumns();
    void fitMarkColumn();
    int fieldIndex(const QString& field) const; // -1 for an empty name
    QString fieldName(int field) const;

    Table& table_;
    SummaryModel* model_;
    SummaryTreeView* view_;
    QComboBox* groupChoice_ = nullptr;
    QWidget* filterBar_ = nullptr;
    QLabel* filterText_ = nullptr;
    GridFooter* footer_;
    QSet<QString> collapsedGroups_; // by group text, for the current grouping
    int markColumnWidth_ = 0;
};
