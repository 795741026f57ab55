#pragma once

#include "core/tables/Table.h"

#include <QCollator>

#include <vector>

// The distinct values of one field of a table, numbered densely, with their
// order: texts by the collator, numbers by number, dates by date; an empty
// text and a null value count as the same blank value, which comes first.
// Equal display texts share one id, so the ids serve filters and groups too.
class FieldValueIndex {
public:
    FieldValueIndex(const Table& table, int field, const QCollator& collator);

    int field() const { return field_; }
    int distinctCount() const { return static_cast<int>(ranks_.size()); }
    int idOf(int record) const { return ids_[static_cast<std::size_t>(record)]; }
    int rankOf(int record) const { return ranks_[static_cast<std::size_t>(idOf(record))]; }
    QString text(int id) const;
    std::vector<int> idsInOrder() const;
    // Whether the record still holds the value it was indexed with.
    bool holds(const Table& table, int record) const;

private:
    void indexTexts(const Table& table);
    void indexNumbers(const Table& table);
    void rankTexts(const QCollator& collator);
    void rankNumbers();
    void setRanks(const std::vector<int>& order); // ids from first to last

    int field_;
    bool isText_;
    std::vector<int> ids_;           // per record
    std::vector<QString> texts_;     // per id, for text fields
    std::vector<FieldValue> values_; // per id, for the other fields: shown only when asked (dates format slowly)
    std::vector<qint64> keys_;       // per id, for the other fields
    std::vector<int> ranks_;         // per id: its place in the order
};
