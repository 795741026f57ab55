#include "gui/grids/SummaryLayout.h"

#include <QSet>

#include <algorithm>

SummaryLayout::SummaryLayout(const Table& table) : table_(table), collator_(QLocale(QLocale::Polish, QLocale::Poland))
{}

void SummaryLayout::setFilter(int field, const QStringList& acceptedTexts)
{
    if (acceptedTexts.isEmpty())
        filters_.erase(field);
    else
        filters_[field] = acceptedTexts;
}

void SummaryLayout::setSort(int field, Qt::SortOrder order)
{
    sortField_ = field;
    sortOrder_ = order;
}

void SummaryLayout::setGroupField(int field)
{
    groupField_ = field;
}

void SummaryLayout::rebuild()
{
    forgetUnusedIndexes();
    std::vector<int> records = filteredRecords();
    order(records);
    split(records);
}

void SummaryLayout::tableChanged()
{
    indexes_.clear();
}

// A record's changed value outdates the index of its field. Where the field
// filters, sorts or groups, the record may belong elsewhere now.
bool SummaryLayout::recordChanged(int record)
{
    if (record < 0 || record >= std::ssize(places_)) {
        indexes_.clear();
        return false;
    }
    const auto erased =
        std::erase_if(indexes_, [this, record](const auto& entry) { return !entry.second.holds(table_, record); });
    return erased == 0;
}

void SummaryLayout::forgetUnusedIndexes()
{
    std::erase_if(indexes_, [this](const auto& entry) {
        const int field = entry.first;
        return field != sortField_ && field != groupField_ && !filters_.contains(field);
    });
}

const FieldValueIndex& SummaryLayout::indexOf(int field)
{
    auto found = indexes_.find(field);
    if (found == indexes_.end())
        found = indexes_.try_emplace(field, table_, field, collator_).first;
    return found->second;
}

std::vector<int> SummaryLayout::filteredRecords()
{
    struct Test {
        const FieldValueIndex* index;
        std::vector<char> accepted; // per value id
    };
    std::vector<Test> tests;
    for (const auto& [field, texts] : filters_) {
        const FieldValueIndex& index = indexOf(field);
        const QSet<QString> acceptedTexts(texts.cbegin(), texts.cend());
        std::vector<char> accepted(static_cast<std::size_t>(index.distinctCount()));
        for (int id = 0; id < index.distinctCount(); ++id)
            accepted[static_cast<std::size_t>(id)] = acceptedTexts.contains(index.text(id));
        tests.push_back({&index, std::move(accepted)});
    }
    std::vector<int> records;
    records.reserve(static_cast<std::size_t>(table_.recordCount()));
    for (int record = 0; record < table_.recordCount(); ++record) {
        const bool passes = std::all_of(tests.cbegin(), tests.cend(), [record](const Test& test) {
            return test.accepted[static_cast<std::size_t>(test.index->idOf(record))] != 0;
        });
        if (passes)
            records.push_back(record);
    }
    return records;
}

// Groups by their value (in the sort direction when grouped by the sorted
// field), then the sort within a group; ties keep the table's order.
void SummaryLayout::order(std::vector<int>& records)
{
    const FieldValueIndex* group = groupField_ >= 0 ? &indexOf(groupField_) : nullptr;
    const FieldValueIndex* sort = sortField_ >= 0 ? &indexOf(sortField_) : nullptr;
    if (!group && !sort)
        return;
    const bool descending = sortOrder_ == Qt::DescendingOrder;
    const bool groupsDescending = descending && groupField_ == sortField_;
    const auto before = [](const FieldValueIndex* index, bool backwards, int a, int b) {
        const int ra = index->rankOf(a);
        const int rb = index->rankOf(b);
        return backwards ? rb - ra : ra - rb;
    };
    std::stable_sort(records.begin(), records.end(), [&](int a, int b) {
        const int byGroup = group ? before(group, groupsDescending, a, b) : 0;
        if (byGroup != 0)
            return byGroup < 0;
        return sort && before(sort, descending, a, b) < 0;
    });
}

void SummaryLayout::split(const std::vector<int>& records)
{
    places_.assign(static_cast<std::size_t>(table_.recordCount()), Place{});
    shownCount_ = static_cast<int>(records.size());
    groups_.clear();
    if (!isGrouped())
        groups_.push_back({QString(), records});
    else {
        const FieldValueIndex& index = indexOf(groupField_);
        int currentId = -1;
        for (const int record : records) {
            if (groups_.empty() || index.idOf(record) != currentId) {
                currentId = index.idOf(record);
                groups_.push_back({index.text(currentId), {}});
            }
            groups_.back().records.push_back(record);
        }
    }
    for (std::size_t g = 0; g < groups_.size(); ++g) {
        const std::vector<int>& members = groups_[g].records;
        for (std::size_t position = 0; position < members.size(); ++position)
            places_[static_cast<std::size_t>(members[position])] = {static_cast<int>(g), static_cast<int>(position)};
    }
}

std::vector<int> SummaryLayout::shownRecords() const
{
    std::vector<int> records;
    records.reserve(static_cast<std::size_t>(shownCount_));
    for (const Group& group : groups_)
        records.insert(records.end(), group.records.cbegin(), group.records.cend());
    return records;
}

SummaryLayout::Place SummaryLayout::placeOf(int record) const
{
    if (record < 0 || record >= std::ssize(places_))
        return {};
    return places_[static_cast<std::size_t>(record)];
}

QStringList SummaryLayout::distinctTexts(int field) const
{
    const FieldValueIndex index(table_, field, collator_);
    QStringList texts;
    for (const int id : index.idsInOrder())
        texts.append(index.text(id));
    return texts;
}
