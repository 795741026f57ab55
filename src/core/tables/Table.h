#pragma once

#include "core/tables/Field.h"
#include "framework/HalvarnError.h"

#include <QAnyStringView>

#include <functional>
#include <memory>
#include <vector>

class TableError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// Told about changes so that a view can follow the table; silent while the
// table's controls are disabled, which ends in one reset.
class TableObserver {
public:
    virtual ~TableObserver() = default;
    virtual void tableReset() = 0;
    virtual void rowInserted(int row) = 0;
    virtual void rowChanged(int row) = 0;
    virtual void rowRemoved(int row) = 0;
};

// An in-memory dataset: typed fields, a current record, browse/edit/insert
// states, a read-only switch and an optional sort on one field.
class Table {
public:
    enum class State { Browse, Edit, Insert };

    Table(QString name, std::vector<FieldDef> fields, QString sortField = {});
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const QString& name() const { return name_; }
    const std::vector<FieldDef>& fields() const { return fields_; }
    int fieldCount() const { return static_cast<int>(fields_.size()); }
    int fieldIndex(QAnyStringView fieldName) const; // -1 when absent
    int requireField(QAnyStringView fieldName) const;

    void open();
    bool isOpen() const { return open_; }
    bool readOnly() const { return readOnly_; }
    void setReadOnly(bool value) { readOnly_ = value; }

    int recordCount() const { return rowCount_; }
    bool isEmpty() const { return rowCount_ == 0; }
    int recNo() const { return current_; } // -1 when empty
    bool eof() const { return eof_; }
    void first();
    void next();
    void last();
    void moveTo(int row);
    bool locate(int field, const FieldValue& value);

    State state() const { return state_; }
    void append();
    void edit();
    void post();
    void cancel();
    void remove();
    void removeAll();

    const FieldValue& value(int field) const;
    const FieldValue& value(QAnyStringView fieldName) const { return value(requireField(fieldName)); }
    void setValue(int field, FieldValue value);
    void setValue(QAnyStringView fieldName, FieldValue value) { setValue(requireField(fieldName), std::move(value)); }

    const FieldValue& at(int row, int field) const
    {
        return rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(field)];
    }

    void setAfterPost(std::function<void(Table&)> handler) { afterPost_ = std::move(handler); }
    void addObserver(TableObserver* observer);
    void removeObserver(TableObserver* observer);
    void disableControls();
    void enableControls();
    bool controlsDisabled() const { return controlsDisabled_ > 0; }

private:
    using Row = std::unique_ptr<FieldValue[]>;
    void requireOpen() const;
    void requireWritable() const;
    void requireBrowse() const;
    FieldValue fitted(int field, FieldValue value) const;
    int sortedPosition(int row) const;
    int moveRow(int from, int to);
    void storeInsertedRow();
    void storeEditedRow();
    template <class F> void notify(F&& call);

    QString name_;
    std::vector<FieldDef> fields_;
    int sortField_ = -1;
    bool open_ = false;
    bool readOnly_ = false;
    std::vector<Row> rows_; // a row of its own per record, so growing and sorting move pointers only
    int rowCount_ = 0;
    int current_ = -1;
    bool eof_ = true;
    State state_ = State::Browse;
    std::vector<FieldValue> buffer_;                  // the new row while inserting
    std::vector<std::pair<int, FieldValue>> changes_; // the fields set while editing
    std::function<void(Table&)> afterPost_;
    std::vector<TableObserver*> observers_;
    int controlsDisabled_ = 0;
    bool resetPending_ = false;
};
