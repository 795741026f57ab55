#include "gui/grids/SummaryModel.h"

#include "gui/grids/TableModel.h"

#include <QColor>
#include <QFont>
#include <QHash>

using namespace Qt::StringLiterals;

namespace {
const QString MarkField = u"ZAZNACZONE"_s;
}

QString ValueLabel(const QString& field, const QString& displayText)
{
    if (displayText.isEmpty())
        return u"(Puste)"_s;
    if (field == MarkField)
        return displayText == u"True" ? u"Zaznaczone"_s : u"Niezaznaczone"_s;
    return displayText;
}

SummaryModel::SummaryModel(Table& mdRZ00, QObject* parent)
    : QAbstractItemModel(parent), table_(mdRZ00), columns_(SummaryColumns()),
      markField_(mdRZ00.requireField(MarkField)), markColumn_(ColumnOfField(columns_, MarkField)), layout_(mdRZ00)
{
    for (const GridColumn& column : columns_)
        fields_.push_back(table_.requireField(column.field));
    layout_.rebuild();
    table_.addObserver(this);
}

SummaryModel::~SummaryModel()
{
    table_.removeObserver(this);
}

QString SummaryModel::captionOfField(int field) const
{
    const auto found = std::find(fields_.cbegin(), fields_.cend(), field);
    if (found == fields_.cend())
        return table_.fields()[static_cast<std::size_t>(field)].name;
    return columns_[static_cast<std::size_t>(found - fields_.cbegin())].caption;
}

int SummaryModel::RecordShift::apply(int record) const
{
    if (delta > 0)
        return record >= row ? record + 1 : record;
    if (delta < 0 && record >= row)
        return record == row ? -1 : record - 1;
    return record;
}

// Lays the rows out afresh after `change`; persistent indexes (a view's current
// row, selection and expanded groups) follow their record or group value.
template <class Change> void SummaryModel::relayout(Change&& change, RecordShift shift)
{
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    std::vector<std::pair<int, QString>> identities; // record, or -1 and the group's text
    identities.reserve(static_cast<std::size_t>(before.size()));
    for (const QModelIndex& index : before) {
        const int record = recordAt(index);
        if (record >= 0)
            identities.emplace_back(shift.apply(record), QString());
        else
            identities.emplace_back(-1, layout_.groups()[static_cast<std::size_t>(index.row())].text);
    }
    change();
    layout_.rebuild();
    QHash<QString, int> groupOfText;
    if (layout_.isGrouped())
        for (std::size_t g = 0; g < layout_.groups().size(); ++g)
            groupOfText.insert(layout_.groups()[g].text, static_cast<int>(g));
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        const auto& [record, text] = identities[static_cast<std::size_t>(i)];
        const int column = before[i].column();
        if (record >= 0)
            after.append(indexOfRecord(record, column));
        else if (groupOfText.contains(text))
            after.append(createIndex(groupOfText.value(text), column, quintptr(0)));
        else
            after.append(QModelIndex());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

void SummaryModel::setColumnFilter(int field, const QStringList& acceptedTexts)
{
    relayout([&] { layout_.setFilter(field, acceptedTexts); });
}

void SummaryModel::clearFilters()
{
    relayout([&] { layout_.clearFilters(); });
}

void SummaryModel::sortByField(int field, Qt::SortOrder order)
{
    relayout([&] { layout_.setSort(field, order); });
}

void SummaryModel::groupByField(int field)
{
    relayout([&] { layout_.setGroupField(field); });
}

bool SummaryModel::isGroupRow(const QModelIndex& index) const
{
    return index.isValid() && layout_.isGrouped() && index.internalId() == 0;
}

int SummaryModel::recordAt(const QModelIndex& index) const
{
    if (!index.isValid() || isGroupRow(index))
        return -1;
    const auto group = static_cast<std::size_t>(layout_.isGrouped() ? index.internalId() - 1 : 0);
    return layout_.groups()[group].records[static_cast<std::size_t>(index.row())];
}

QModelIndex SummaryModel::groupIndex(int group) const
{
    if (!layout_.isGrouped() || group < 0 || group >= std::ssize(layout_.groups()))
        return {};
    return createIndex(group, 0, quintptr(0));
}

QModelIndex SummaryModel::indexOfRecord(int record, int column) const
{
    const SummaryLayout::Place place = layout_.placeOf(record);
    if (place.group < 0)
        return {};
    const quintptr id = layout_.isGrouped() ? quintptr(place.group) + 1 : 0;
    return createIndex(place.position, column, id);
}

QModelIndex SummaryModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column >= columnCount() || row >= rowCount(parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : 0);
}

QModelIndex SummaryModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || !layout_.isGrouped() || child.internalId() == 0)
        return {};
    return createIndex(static_cast<int>(child.internalId() - 1), 0, quintptr(0));
}

int SummaryModel::rowCount(const QModelIndex& parent) const
{
    const auto& groups = layout_.groups();
    if (!parent.isValid())
        return layout_.isGrouped() ? static_cast<int>(groups.size()) : static_cast<int>(groups.front().records.size());
    if (!isGroupRow(parent) || parent.column() != 0)
        return 0;
    return static_cast<int>(groups[static_cast<std::size_t>(parent.row())].records.size());
}

int SummaryModel::columnCount(const QModelIndex&) const
{
    return static_cast<int>(columns_.size());
}

bool SummaryModel::isMarked(int record) const
{
    return AsBoolean(table_.at(record, markField_));
}

QVariant SummaryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == GroupRowRole)
        return isGroupRow(index);
    if (isGroupRow(index))
        return groupData(index, role);
    const int record = recordAt(index);
    // While the table's controls are disabled it may hold fewer records than laid out.
    if (record >= table_.recordCount())
        return {};
    return recordData(record, index.column(), role);
}

QVariant SummaryModel::groupData(const QModelIndex& index, int role) const
{
    if (index.column() != 0)
        return {};
    const SummaryLayout::Group& group = layout_.groups()[static_cast<std::size_t>(index.row())];
    const int field = layout_.groupField();
    if (role == Qt::DisplayRole)
        return u"%1: %2 (%3)"_s
            .arg(captionOfField(field), ValueLabel(table_.fields()[static_cast<std::size_t>(field)].name, group.text))
            .arg(group.records.size());
    if (role == Qt::FontRole) {
        QFont font;
        font.setBold(true);
        return font;
    }
    return {};
}

QFont SummaryModel::markedFont()
{
    QFont font;
    font.setBold(true);
    font.setItalic(true);
    return font;
}

QVariant SummaryModel::recordData(int record, int column, int role) const
{
    const FieldValue& value = table_.at(record, fields_[static_cast<std::size_t>(column)]);
    switch (role) {
    case Qt::DisplayRole: return column == markColumn_ ? QVariant() : QVariant(DisplayText(value));
    case Qt::CheckStateRole:
        return column == markColumn_ ? QVariant(AsBoolean(value) ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::TextAlignmentRole: return static_cast<int>(columns_[static_cast<std::size_t>(column)].alignment);
    case Qt::ForegroundRole: return isMarked(record) ? QColor(255, 0, 0) : QColor(Qt::black);
    case Qt::FontRole: return isMarked(record) ? QVariant(markedFont()) : QVariant();
    default: return {};
    }
}

// While a long operation fills the table the rows shown are those of before it,
// so a mark set then could land on another animal: it is refused.
bool SummaryModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const int record = recordAt(index);
    if (role != Qt::CheckStateRole || index.column() != markColumn_ || record < 0 || record >= table_.recordCount() ||
        table_.readOnly() || table_.controlsDisabled() || table_.state() != Table::State::Browse)
        return false;
    table_.moveTo(record);
    table_.edit();
    table_.setValue(markField_, value.toInt() == Qt::Checked);
    table_.post();
    return true;
}

QVariant SummaryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return QAbstractItemModel::headerData(section, orientation, role);
    return ColumnHeaderData(columns_[static_cast<std::size_t>(section)], role);
}

Qt::ItemFlags SummaryModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (isGroupRow(index))
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (index.column() == markColumn_ && !table_.readOnly() && !table_.controlsDisabled())
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

void SummaryModel::tableReset()
{
    beginResetModel();
    layout_.tableChanged();
    layout_.rebuild();
    endResetModel();
}

void SummaryModel::rowInserted(int row)
{
    relayout([this] { layout_.tableChanged(); }, {row, +1});
}

void SummaryModel::rowChanged(int row)
{
    if (!layout_.recordChanged(row)) {
        relayout([] {});
        return;
    }
    const QModelIndex first = indexOfRecord(row, 0);
    if (first.isValid())
        Q_EMIT dataChanged(first, indexOfRecord(row, columnCount() - 1));
}

void SummaryModel::rowRemoved(int row)
{
    relayout([this] { layout_.tableChanged(); }, {row, -1});
}
