#include "reports/chart/GroupsChartData.h"

#include "analysis/GroupCatalogue.h"
#include "core/tables/WorkingTables.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {
// The catalogue indents the rows under a block's heading row.
bool IsIndented(const QString& caption)
{
    return caption.startsWith(u' ');
}

std::vector<GroupsChartCategory> CountedGroups(const Table& overall)
{
    const int idField = overall.requireField(u"ID");
    const int captionField = overall.requireField(u"GT");
    std::vector<GroupsChartCategory> categories;
    QString heading;
    for (int row = 0; row < overall.recordCount(); ++row) {
        const QString caption = AsString(overall.at(row, captionField));
        const QString label = caption.trimmed();
        if (!IsIndented(caption) && !label.isEmpty())
            heading = label;
        const int count = GroupRowCount(overall, row);
        if (count == 0)
            continue;
        const int id = AsInteger(overall.at(row, idField));
        categories.push_back(
            {id, label.isEmpty() ? QString::number(id) : label, IsIndented(caption) ? heading : QString(), count});
    }
    return categories;
}

std::vector<int> HerdValues(const Table& groups, const std::vector<GroupsChartCategory>& categories)
{
    const int idField = groups.requireField(u"ID");
    QHash<int, int> byId;
    for (int row = 0; row < groups.recordCount(); ++row)
        byId[AsInteger(groups.at(row, idField))] += GroupRowCount(groups, row);
    std::vector<int> values;
    values.reserve(categories.size());
    for (const GroupsChartCategory& category : categories)
        values.push_back(byId.value(category.id));
    return values;
}

// Labels that occur more than once in `labels`.
QSet<QString> Repeated(const QStringList& labels)
{
    QSet<QString> seen, repeated;
    for (const QString& label : labels)
        if (seen.contains(label))
            repeated.insert(label);
        else
            seen.insert(label);
    return repeated;
}
} // namespace

GroupsChartData BuildGroupsChartData(const WorkingTables& tables)
{
    GroupsChartData data;
    data.categories = CountedGroups(*tables.HerdSlots[0].GroupsTable);
    for (int slot = 1; slot < HerdSlotCount && !data.categories.empty(); ++slot) {
        const THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
        if (herd.Visible && herd.GroupsTable)
            data.series.push_back(
                {slot, herd.Code, u"Stado "_s + herd.Code, HerdValues(*herd.GroupsTable, data.categories)});
    }
    if (data.isEmpty())
        return {};
    return data;
}

int GroupsChartData::herdSum(std::size_t category) const
{
    return std::accumulate(series.begin(), series.end(), 0,
                           [category](int sum, const GroupsChartSeries& herd) { return sum + herd.values[category]; });
}

int GroupsChartData::largestHerdSum() const
{
    int largest = 0;
    for (std::size_t category = 0; category < categories.size(); ++category)
        largest = std::max(largest, herdSum(category));
    return largest;
}

bool GroupsChartData::herdSumsMatch() const
{
    for (std::size_t category = 0; category < categories.size(); ++category)
        if (herdSum(category) != categories[category].overall)
            return false;
    return true;
}

QStringList GroupsChartData::categoryLabels() const
{
    QStringList labels;
    for (const GroupsChartCategory& category : categories)
        labels.append(category.label);
    const QSet<QString> shared = Repeated(labels);
    for (std::size_t i = 0; i < categories.size(); ++i)
        if (shared.contains(labels[static_cast<qsizetype>(i)]) && !categories[i].block.isEmpty())
            labels[static_cast<qsizetype>(i)] += u" (%1)"_s.arg(categories[i].block);
    // Whatever is still alike (two rows of one block) is told apart by its "ID".
    const QSet<QString> stillShared = Repeated(labels);
    for (std::size_t i = 0; i < categories.size(); ++i)
        if (stillShared.contains(labels[static_cast<qsizetype>(i)]))
            labels[static_cast<qsizetype>(i)] += u" [%1]"_s.arg(categories[i].id);
    return labels;
}

QString GroupsChartData::totalText(std::size_t category) const
{
    const int sum = herdSum(category);
    const int overall = categories[category].overall;
    return sum == overall ? QString::number(sum) : u"%1 (Ogółem: %2)"_s.arg(sum).arg(overall);
}

ValueAxisScale ScaleFor(int largest)
{
    largest = std::max(largest, 0);
    for (int magnitude = 1;; magnitude *= 10)
        for (const int factor : {1, 2, 5})
            if (largest <= factor * magnitude * 6) {
                const int step = factor * magnitude;
                return {step, std::max(step, (largest + step - 1) / step * step)};
            }
}

QColor HerdColour(std::size_t index)
{
    static const QColor Base[] = {
        {46, 110, 190}, {230, 130, 30}, {60, 150, 70},   {200, 60, 60},  {130, 90, 180},
        {140, 100, 70}, {30, 150, 150}, {210, 100, 160}, {150, 150, 40}, {110, 110, 110},
    };
    constexpr std::size_t count = std::size(Base);
    const QColor colour = Base[index % count];
    // The second round of herds gets the same hues, lighter.
    return index / count % 2 == 0 ? colour : colour.lighter(145);
}
