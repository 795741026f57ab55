#include "gui/grids/FieldValueIndex.h"

#include <QHash>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>

namespace {
constexpr qint64 BlankKey = std::numeric_limits<qint64>::min();

bool IsTextField(const FieldDef& def)
{
    return def.type == FieldType::String || def.type == FieldType::Memo;
}

QString TextOf(const FieldValue& value)
{
    const auto* text = std::get_if<QString>(&value);
    return text ? *text : QString();
}

// Texts of digits and capital letters only (or of digits and small letters
// only) collate as their character codes do; identification numbers and herd
// codes are such texts, and comparing them directly is many times faster.
constexpr std::uint8_t DigitsAndCapitals = 1;
constexpr std::uint8_t DigitsAndSmallLetters = 2;

std::uint8_t PlainKind(const QString& text)
{
    std::uint8_t kind = DigitsAndCapitals | DigitsAndSmallLetters;
    for (const QChar c : text) {
        if (c >= u'A' && c <= u'Z')
            kind &= DigitsAndCapitals;
        else if (c >= u'a' && c <= u'z')
            kind &= DigitsAndSmallLetters;
        else if (c < u'0' || c > u'9')
            return 0;
    }
    return kind;
}

// A number that orders the values of a field that is not a text.
qint64 KeyOf(const FieldValue& value)
{
    if (const auto* date = std::get_if<QDate>(&value))
        return date->isValid() ? date->toJulianDay() : BlankKey;
    return IsNull(value) ? BlankKey : AsInteger(value);
}
} // namespace

FieldValueIndex::FieldValueIndex(const Table& table, int field, const QCollator& collator)
    : field_(field), isText_(IsTextField(table.fields()[static_cast<std::size_t>(field)]))
{
    ids_.reserve(static_cast<std::size_t>(table.recordCount()));
    if (isText_) {
        indexTexts(table);
        rankTexts(collator);
    } else {
        indexNumbers(table);
        rankNumbers();
    }
}

void FieldValueIndex::indexTexts(const Table& table)
{
    QHash<QString, int> idOfText;
    for (int record = 0; record < table.recordCount(); ++record) {
        const QString text = TextOf(table.at(record, field_));
        auto found = idOfText.constFind(text);
        if (found == idOfText.cend()) {
            found = idOfText.insert(text, static_cast<int>(texts_.size()));
            texts_.push_back(text);
        }
        ids_.push_back(*found);
    }
}

void FieldValueIndex::indexNumbers(const Table& table)
{
    QHash<qint64, int> idOfKey;
    for (int record = 0; record < table.recordCount(); ++record) {
        const FieldValue& value = table.at(record, field_);
        const qint64 key = KeyOf(value);
        auto found = idOfKey.constFind(key);
        if (found == idOfKey.cend()) {
            found = idOfKey.insert(key, static_cast<int>(keys_.size()));
            keys_.push_back(key);
            values_.push_back(value);
        }
        ids_.push_back(*found);
    }
}

void FieldValueIndex::rankTexts(const QCollator& collator)
{
    std::vector<std::uint8_t> kinds(texts_.size());
    std::transform(texts_.cbegin(), texts_.cend(), kinds.begin(), PlainKind);
    std::vector<int> order(texts_.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [this, &kinds, &collator](int a, int b) {
        const QString& x = texts_[static_cast<std::size_t>(a)];
        const QString& y = texts_[static_cast<std::size_t>(b)];
        if (x.isEmpty() || y.isEmpty())
            return x.isEmpty() && !y.isEmpty();
        if ((kinds[static_cast<std::size_t>(a)] & kinds[static_cast<std::size_t>(b)]) != 0)
            return x < y;
        const int compared = collator.compare(x, y);
        return compared != 0 ? compared < 0 : x < y; // texts the collator finds equal still differ
    });
    setRanks(order);
}

void FieldValueIndex::rankNumbers()
{
    std::vector<int> order(keys_.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [this](int a, int b) { return keys_[static_cast<std::size_t>(a)] < keys_[static_cast<std::size_t>(b)]; });
    setRanks(order);
}

void FieldValueIndex::setRanks(const std::vector<int>& order)
{
    ranks_.resize(order.size());
    for (std::size_t place = 0; place < order.size(); ++place)
        ranks_[static_cast<std::size_t>(order[place])] = static_cast<int>(place);
}

QString FieldValueIndex::text(int id) const
{
    const auto i = static_cast<std::size_t>(id);
    return isText_ ? texts_[i] : DisplayText(values_[i]);
}

std::vector<int> FieldValueIndex::idsInOrder() const
{
    std::vector<int> order(ranks_.size());
    for (std::size_t id = 0; id < ranks_.size(); ++id)
        order[static_cast<std::size_t>(ranks_[id])] = static_cast<int>(id);
    return order;
}

bool FieldValueIndex::holds(const Table& table, int record) const
{
    if (record >= table.recordCount() || record >= std::ssize(ids_))
        return false;
    const FieldValue& value = table.at(record, field_);
    const auto id = static_cast<std::size_t>(idOf(record));
    return isText_ ? TextOf(value) == texts_[id] : KeyOf(value) == keys_[id];
}
