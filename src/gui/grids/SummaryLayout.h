#pragma once

#include "gui/grids/FieldValueIndex.h"

#include <QStringList>

#include <map>
#include <vector>

// Which records of a table are shown, in which order and under which groups,
// given filters on fields, a sort on one field and a grouping by one field.
// It keeps no widgets: the summary grid's model presents what it computes.
class SummaryLayout {
public:
    struct Group {
        QString text;             // the display text every record of the group shares
        std::vector<int> records; // in display order
    };
    struct Place {
        int group = -1; // -1: the record is not shown
        int position = -1;
    };

    explicit SummaryLayout(const Table& table);

    // A filter shows the records whose display text of the field is one of the
    // accepted texts; filters on several fields must all pass. Empty: no filter.
    void setFilter(int field, const QStringList& acceptedTexts);
    void clearFilters() { filters_.clear(); }
    void setSort(int field, Qt::SortOrder order); // field -1: table order
    void setGroupField(int field);                // -1: no grouping

    const std::map<int, QStringList>& filters() const { return filters_; }
    int sortField() const { return sortField_; }
    Qt::SortOrder sortOrder() const { return sortOrder_; }
    int groupField() const { return groupField_; }
    bool isGrouped() const { return groupField_ >= 0; }

    // Computes the layout from the table. The ordered values of the fields in
    // use are kept between rebuilds, so a new filter, sort or grouping does not
    // sort the table's texts again; tell the layout when the table changes.
    void rebuild();
    void tableChanged();            // records came, went or were replaced
    bool recordChanged(int record); // true when the record keeps its place

    // Without grouping a single group holds every shown record.
    const std::vector<Group>& groups() const { return groups_; }
    int shownCount() const { return shownCount_; }
    std::vector<int> shownRecords() const;
    Place placeOf(int record) const;
    // The distinct display texts of a field over all records, in sort order.
    QStringList distinctTexts(int field) const;

private:
    const FieldValueIndex& indexOf(int field);
    void forgetUnusedIndexes();
    std::vector<int> filteredRecords();
    void order(std::vector<int>& records);
    void split(const std::vector<int>& records);

    const Table& table_;
    QCollator collator_;
    std::map<int, QStringList> filters_;
    int sortField_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    int groupField_ = -1;

    std::map<int, FieldValueIndex> indexes_; // of the fields in use, valid for the table as it is
    std::vector<Group> groups_{Group{}};
    std::vector<Place> places_; // per record
    int shownCount_ = 0;
};
