#include "core/tables/Table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
const FieldValue NullValue;

bool FitsType(FieldType type, const FieldValue& value)
{
    switch (type) {
    case FieldType::String:
    case FieldType::Memo: return std::holds_alternative<QString>(value);
    case FieldType::Int16:
    case FieldType::Int32: return std::holds_alternative<qint32>(value);
    case FieldType::Date: return std::holds_alternative<QDate>(value);
    case FieldType::Boolean: return std::holds_alternative<bool>(value);
    }
    return false;
}

bool LessThan(const FieldValue& a, const FieldValue& b)
{
    if (IsNull(a) || IsNull(b))
        return IsNull(a) && !IsNull(b);
    if (a.index() != b.index())
        return a.index() < b.index();
    return std::visit(
        [&b](const auto& x) -> bool {
            using T = std::decay_t<decltype(x)>;
            if constexpr (std::is_same_v<T, std::monostate>)
                return false;
            else
                return x < std::get<T>(b);
        },
        a);
}
} // namespace

Table::Table(QString name, std::vector<FieldDef> fields, QString sortField)
    : name_(std::move(name)), fields_(std::move(fields))
{
    // A sort declared on a field the table lacks is inert.
    sortField_ = sortField.isEmpty() ? -1 : fieldIndex(sortField);
}

int Table::fieldIndex(QAnyStringView fieldName) const
{
    for (int i = 0; i < fieldCount(); ++i)
        if (QAnyStringView::compare(fields_[static_cast<std::size_t>(i)].name, fieldName) == 0)
            return i;
    return -1;
}

int Table::requireField(QAnyStringView fieldName) const
{
    const int index = fieldIndex(fieldName);
    if (index < 0)
        throw TableError(u"Tabela %1 nie ma pola \"%2\""_s.arg(name_, fieldName.toString()));
    return index;
}

void Table::open()
{
    open_ = true;
}

void Table::requireOpen() const
{
    if (!open_)
        throw TableError(u"Tabela %1 nie jest otwarta"_s.arg(name_));
}

void Table::requireWritable() const
{
    requireOpen();
    if (readOnly_)
        throw TableError(u"Nie można zmieniać tabeli %1: jest tylko do odczytu"_s.arg(name_));
}

void Table::requireBrowse() const
{
    if (state_ != State::Browse)
        throw TableError(u"Tabela %1 jest w trakcie edycji"_s.arg(name_));
}

void Table::first()
{
    requireBrowse();
    current_ = rowCount_ > 0 ? 0 : -1;
    eof_ = rowCount_ == 0;
}

void Table::next()
{
    requireBrowse();
    if (current_ + 1 < rowCount_)
        ++current_;
    else
        eof_ = true;
}

void Table::last()
{
    requireBrowse();
    current_ = rowCount_ - 1;
    eof_ = rowCount_ == 0;
}

void Table::moveTo(int row)
{
    requireBrowse();
    if (row < 0 || row >= rowCount_)
        throw TableError(u"Tabela %1 nie ma wiersza %2"_s.arg(name_).arg(row + 1));
    current_ = row;
    eof_ = false;
}

bool Table::locate(int field, const FieldValue& value)
{
    requireBrowse();
    for (int row = 0; row < rowCount_; ++row) {
        if (at(row, field) == value) {
            moveTo(row);
            return true;
        }
    }
    return false;
}

void Table::append()
{
    requireWritable();
    requireBrowse();
    buffer_.assign(fields_.size(), FieldValue{});
    state_ = State::Insert;
}

void Table::edit()
{
    requireWritable();
    requireBrowse();
    if (current_ < 0)
        throw TableError(u"Tabela %1 jest pusta"_s.arg(name_));
    changes_.clear();
    state_ = State::Edit;
}

void Table::setValue(int field, FieldValue value)
{
    requireWritable();
    if (state_ == State::Browse)
        throw TableError(u"Tabela %1 nie jest w trybie edycji"_s.arg(name_));
    if (field < 0 || field >= fieldCount())
        throw TableError(u"Tabela %1 nie ma pola nr %2"_s.arg(name_).arg(field));
    FieldValue stored = fitted(field, std::move(value));
    if (state_ == State::Insert) {
        buffer_[static_cast<std::size_t>(field)] = std::move(stored);
        return;
    }
    for (auto& change : changes_) {
        if (change.first == field) {
            change.second = std::move(stored);
            return;
        }
    }
    changes_.emplace_back(field, std::move(stored));
}

FieldValue Table::fitted(int field, FieldValue value) const
{
    const FieldDef& def = fields_[static_cast<std::size_t>(field)];
    if (IsNull(value))
        return value;
    if (!FitsType(def.type, value))
        throw TableError(u"Pole \"%1\" tabeli %2 nie przyjmuje tej wartości"_s.arg(def.name, name_));
    if (def.type == FieldType::String) {
        auto& text = std::get<QString>(value);
        if (text.size() > def.size)
            text.truncate(def.size);
    } else if (def.type == FieldType::Int16) {
        value = static_cast<qint32>(static_cast<qint16>(std::get<qint32>(value)));
    }
    return value;
}

void Table::post()
{
    requireWritable();
    if (state_ == State::Insert)
        storeInsertedRow();
    else if (state_ == State::Edit)
        storeEditedRow();
    else
        return;
    if (afterPost_)
        afterPost_(*this);
}

void Table::storeInsertedRow()
{
    Row row = std::make_unique<FieldValue[]>(fields_.size());
    std::move(buffer_.begin(), buffer_.end(), row.get());
    rows_.push_back(std::move(row));
    buffer_.clear();
    state_ = State::Browse;
    current_ = rowCount_++;
    current_ = moveRow(current_, sortedPosition(current_));
    eof_ = false;
    notify([this](TableObserver* o) { o->rowInserted(current_); });
}

void Table::storeEditedRow()
{
    for (auto& [field, value] : changes_)
        rows_[static_cast<std::size_t>(current_)][static_cast<std::size_t>(field)] = std::move(value);
    changes_.clear();
    state_ = State::Browse;
    const int from = current_;
    current_ = moveRow(from, sortedPosition(from));
    if (current_ == from) {
        notify([this](TableObserver* o) { o->rowChanged(current_); });
    } else {
        notify([from](TableObserver* o) { o->rowRemoved(from); });
        notify([this](TableObserver* o) { o->rowInserted(current_); });
    }
}

// Where `row` belongs under the sort, after any rows with an equal key.
int Table::sortedPosition(int row) const
{
    if (sortField_ < 0)
        return row;
    const FieldValue& key = at(row, sortField_);
    const bool beforePrevious = row > 0 && LessThan(key, at(row - 1, sortField_));
    const bool afterNext = row + 1 < rowCount_ && LessThan(at(row + 1, sortField_), key);
    if (!beforePrevious && !afterNext)
        return row;
    int position = 0;
    for (int other = 0; other < rowCount_; ++other)
        if (other != row && !LessThan(key, at(other, sortField_)))
            ++position;
    return position;
}

int Table::moveRow(int from, int to)
{
    if (from == to)
        return to;
    auto begin = rows_.begin();
    if (from < to)
        std::rotate(begin + from, begin + from + 1, begin + to + 1);
    else
        std::rotate(begin + to, begin + from, begin + from + 1);
    return to;
}

void Table::cancel()
{
    buffer_.clear();
    changes_.clear();
    state_ = State::Browse;
}

void Table::remove()
{
    requireWritable();
    requireBrowse();
    if (current_ < 0)
        throw TableError(u"Tabela %1 jest pusta"_s.arg(name_));
    rows_.erase(rows_.begin() + current_);
    const int removed = current_;
    --rowCount_;
    if (current_ >= rowCount_)
        current_ = rowCount_ - 1;
    eof_ = rowCount_ == 0;
    notify([removed](TableObserver* o) { o->rowRemoved(removed); });
}

void Table::removeAll()
{
    requireWritable();
    requireBrowse();
    rows_.clear();
    rowCount_ = 0;
    current_ = -1;
    eof_ = true;
    notify([](TableObserver* o) { o->tableReset(); });
}

const FieldValue& Table::value(int field) const
{
    if (field < 0 || field >= fieldCount())
        throw TableError(u"Tabela %1 nie ma pola nr %2"_s.arg(name_).arg(field));
    if (state_ == State::Insert)
        return buffer_[static_cast<std::size_t>(field)];
    if (state_ == State::Edit)
        for (const auto& change : changes_)
            if (change.first == field)
                return change.second;
    if (current_ < 0)
        return NullValue;
    return at(current_, field);
}

void Table::addObserver(TableObserver* observer)
{
    observers_.push_back(observer);
}

void Table::removeObserver(TableObserver* observer)
{
    std::erase(observers_, observer);
}

void Table::disableControls()
{
    ++controlsDisabled_;
}

void Table::enableControls()
{
    if (controlsDisabled_ > 0 && --controlsDisabled_ == 0 && resetPending_) {
        resetPending_ = false;
        for (TableObserver* o : observers_)
            o->tableReset();
    }
}

template <class F> void Table::notify(F&& call)
{
    if (controlsDisabled_ > 0) {
        resetPending_ = true;
        return;
    }
    for (TableObserver* o : observers_)
        call(o);
}
