#include "gui/grids/SummaryGrid.h"

#include "gui/grids/ColumnFilterPopup.h"
#include "gui/grids/FooterTotals.h"
#include "gui/grids/GridFooter.h"
#include "gui/grids/GridViewSetup.h"
#include "gui/grids/SummaryModel.h"
#include "gui/grids/SummaryTreeView.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

SummaryGrid::SummaryGrid(Table& mdRZ00, QWidget* parent)
    : QWidget(parent), table_(mdRZ00), model_(new SummaryModel(mdRZ00, this)), view_(new SummaryTreeView(this)),
      footer_(new GridFooter(*view_, *view_->header(), this))
{
    view_->setObjectName(u"view"_s);
    view_->setModel(model_);
    SetUpGridView(*view_);
    view_->setUniformRowHeights(true);
    view_->setAllColumnsShowFocus(true);
    view_->setRootIsDecorated(false);
    view_->setIndentation(view_->fontMetrics().height());
    setUpHeader();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(createGroupBar());
    layout->addWidget(createFilterBar());
    layout->addWidget(view_, 1);
    layout->addWidget(footer_);

    connect(model_, &QAbstractItemModel::modelReset, this, &SummaryGrid::fitColumns);
    connect(model_, &QAbstractItemModel::modelReset, this, &SummaryGrid::afterRelayout);
    connect(model_, &QAbstractItemModel::layoutChanged, this, &SummaryGrid::afterRelayout);
    connect(model_, &QAbstractItemModel::dataChanged, this, &SummaryGrid::updateFooter);
    connect(view_, &QTreeView::expanded, this, [this](const QModelIndex& index) { rememberExpansion(index, true); });
    connect(view_, &QTreeView::collapsed, this, [this](const QModelIndex& index) { rememberExpansion(index, false); });
    fitColumns();
    updateFooter();
}

// Sized for the marked rows' font, so a mark never cuts a value.
void SummaryGrid::fitColumns()
{
    FitColumnsToContent(*view_->header(), model_->columns(), table_, SummaryModel::markedFont());
    fitMarkColumn();
}

QWidget* SummaryGrid::createGroupBar()
{
    auto* bar = new QWidget(this);
    auto* label = new QLabel(u"Grupuj według:"_s, bar);
    groupChoice_ = new QComboBox(bar);
    groupChoice_->setObjectName(u"edGrupujWedlug"_s);
    label->setBuddy(groupChoice_);
    groupChoice_->addItem(u"(brak)"_s, QString());
    for (const GridColumn& column : model_->columns())
        groupChoice_->addItem(column.caption, column.field);
    connect(groupChoice_, &QComboBox::activated, this,
            [this](int entry) { groupByField(groupChoice_->itemData(entry).toString()); });
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(groupChoice_);
    layout->addStretch();
    return bar;
}

QWidget* SummaryGrid::createFilterBar()
{
    filterBar_ = new QWidget(this);
    filterBar_->setObjectName(u"filterBar"_s);
    filterText_ = new QLabel(filterBar_);
    filterText_->setObjectName(u"lblFiltr"_s);
    filterText_->setWordWrap(true);
    auto* clear = new QPushButton(u"Wyczyść filtr"_s, filterBar_);
    clear->setObjectName(u"btnWyczyscFiltr"_s);
    connect(clear, &QPushButton::clicked, this, &SummaryGrid::clearFilters);
    auto* layout = new QHBoxLayout(filterBar_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(filterText_, 1);
    layout->addWidget(clear);
    filterBar_->hide();
    return filterBar_;
}

void SummaryGrid::setUpHeader()
{
    QHeaderView* header = view_->header();
    header->setSectionsMovable(false);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    SetUpColumnWidths(*header, model_->columns());
    markColumnWidth_ = header->sectionSize(0);
    connect(header, &QHeaderView::sortIndicatorChanged, this, &SummaryGrid::sortIndicatorChanged);
    connect(header, &QWidget::customContextMenuRequested, this, &SummaryGrid::showHeaderMenu);
}

QTreeView* SummaryGrid::view() const
{
    return view_;
}

int SummaryGrid::fieldIndex(const QString& field) const
{
    return field.isEmpty() ? -1 : table_.requireField(field);
}

QString SummaryGrid::fieldName(int field) const
{
    return field < 0 ? QString() : table_.fields()[static_cast<std::size_t>(field)].name;
}

std::vector<int> SummaryGrid::rowsInDisplayOrder() const
{
    const SummaryLayout& layout = model_->layout();
    std::vector<int> rows;
    rows.reserve(static_cast<std::size_t>(layout.shownCount()));
    for (std::size_t g = 0; g < layout.groups().size(); ++g) {
        if (layout.isGrouped() && !view_->isExpanded(model_->groupIndex(static_cast<int>(g))))
            continue;
        // While the table's controls are disabled it may hold fewer records than laid out.
        for (const int record : layout.groups()[g].records)
            if (record < table_.recordCount())
                rows.push_back(record);
    }
    return rows;
}

void SummaryGrid::setColumnFilter(const QString& field, const QStringList& acceptedDisplayTexts)
{
    model_->setColumnFilter(fieldIndex(field), acceptedDisplayTexts);
    updateFilterBar();
}

void SummaryGrid::clearFilters()
{
    model_->clearFilters();
    updateFilterBar();
}

void SummaryGrid::sortByField(const QString& field, Qt::SortOrder order)
{
    const int column = ColumnOfField(model_->columns(), field);
    {
        const QSignalBlocker blocker(view_->header());
        view_->header()->setSortIndicator(column, order);
    }
    model_->sortByField(fieldIndex(field), order);
}

void SummaryGrid::sortIndicatorChanged(int column, Qt::SortOrder order)
{
    model_->sortByField(column < 0 ? -1 : model_->fieldOfColumn(column), order);
}

void SummaryGrid::groupByField(const QString& field)
{
    const int groupField = fieldIndex(field);
    if (groupField != model_->layout().groupField())
        collapsedGroups_.clear();
    view_->setRootIsDecorated(groupField >= 0);
    model_->groupByField(groupField);
    updateGroupChoice();
    fitMarkColumn();
}

// Data rows inside groups are indented; the check box keeps its room.
void SummaryGrid::fitMarkColumn()
{
    const int indent = model_->layout().isGrouped() ? 2 * view_->indentation() : 0;
    view_->header()->resizeSection(0, markColumnWidth_ + indent);
}

void SummaryGrid::updateGroupChoice()
{
    const QSignalBlocker blocker(groupChoice_);
    const int entry = groupChoice_->findData(fieldName(model_->layout().groupField()));
    groupChoice_->setCurrentIndex(std::max(entry, 0));
}

void SummaryGrid::setGroupExpanded(int groupIndex, bool expanded)
{
    view_->setExpanded(model_->groupIndex(groupIndex), expanded);
}

void SummaryGrid::rememberExpansion(const QModelIndex& index, bool expanded)
{
    if (!model_->isGroupRow(index))
        return;
    const QString& text = model_->layout().groups()[static_cast<std::size_t>(index.row())].text;
    if (expanded)
        collapsedGroups_.remove(text);
    else
        collapsedGroups_.insert(text);
}

void SummaryGrid::afterRelayout()
{
    restoreExpansion();
    updateFooter();
}

// Groups are expanded unless the user collapsed the group of that value.
void SummaryGrid::restoreExpansion()
{
    const SummaryLayout& layout = model_->layout();
    if (!layout.isGrouped())
        return;
    for (std::size_t g = 0; g < layout.groups().size(); ++g) {
        const QModelIndex group = model_->groupIndex(static_cast<int>(g));
        const bool expanded = !collapsedGroups_.contains(layout.groups()[g].text);
        if (view_->isExpanded(group) != expanded)
            view_->setExpanded(group, expanded);
    }
}

void SummaryGrid::updateFooter()
{
    const std::vector<FooterCell> cells = AnimalFooterCells();
    const QStringList texts = FooterTexts(table_, cells, model_->layout().shownRecords());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const int column = ColumnOfField(model_->columns(), cells[i].field);
        footer_->setText(column, texts[static_cast<qsizetype>(i)],
                         model_->columns()[static_cast<std::size_t>(column)].alignment);
    }
}

QString SummaryGrid::footerText(const QString& field) const
{
    const int column = ColumnOfField(model_->columns(), field);
    return column < 0 ? QString() : footer_->text(column);
}

// The filters in the order of the grid's columns, e.g. "Filtr: Stado = 001 lub 002 oraz Plec = XX".
QString SummaryGrid::filterDescription() const
{
    std::vector<std::pair<int, QString>> parts; // column (fields without one last), words
    for (const auto& [field, texts] : model_->layout().filters()) {
        QStringList labels;
        for (const QString& text : texts)
            labels.append(ValueLabel(fieldName(field), text));
        const int column = ColumnOfField(model_->columns(), fieldName(field));
        parts.emplace_back(column < 0 ? std::numeric_limits<int>::max() : column,
                           u"%1 = %2"_s.arg(model_->captionOfField(field), labels.join(u" lub "_s)));
    }
    if (parts.empty())
        return {};
    std::stable_sort(parts.begin(), parts.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    QStringList words;
    for (const auto& part : parts)
        words.append(part.second);
    return u"Filtr: "_s + words.join(u" oraz "_s);
}

void SummaryGrid::updateFilterBar()
{
    const QString description = filterDescription();
    filterText_->setText(description);
    filterBar_->setVisible(!description.isEmpty());
}

ColumnFilterPopup* SummaryGrid::openFilterPopup(const QString& field)
{
    const int index = fieldIndex(field);
    const auto& filters = model_->layout().filters();
    const auto current = filters.find(index);
    auto* popup = new ColumnFilterPopup(field, model_->layout().distinctTexts(index),
                                        current == filters.end() ? QStringList() : current->second, this);
    connect(popup, &ColumnFilterPopup::filterChosen, this,
            [this, field](const QStringList& accepted) { setColumnFilter(field, accepted); });
    QHeaderView* header = view_->header();
    const int column = std::max(ColumnOfField(model_->columns(), field), 0);
    popup->resize(std::max(header->sectionSize(column), 220), 280);
    popup->move(header->mapToGlobal(QPoint(header->sectionViewportPosition(column), header->height())));
    popup->show();
    return popup;
}

void SummaryGrid::showHeaderMenu(const QPoint& position)
{
    const int column = view_->header()->logicalIndexAt(position);
    if (column < 0)
        return;
    const QString field = model_->columns()[static_cast<std::size_t>(column)].field;
    QMenu menu(this);
    menu.addAction(u"Sortuj rosnąco"_s, this, [this, field] { sortByField(field, Qt::AscendingOrder); });
    menu.addAction(u"Sortuj malejąco"_s, this, [this, field] { sortByField(field, Qt::DescendingOrder); });
    menu.addAction(u"Bez sortowania"_s, this, [this] { sortByField({}, Qt::AscendingOrder); });
    menu.addSeparator();
    menu.addAction(u"Grupuj według tej kolumny"_s, this, [this, field] { groupByField(field); });
    menu.addAction(u"Bez grupowania"_s, this, [this] { groupByField({}); })->setEnabled(model_->layout().isGrouped());
    menu.addSeparator();
    // The list pops up once the menu has closed.
    menu.addAction(u"Filtruj…"_s, this, [this, field] {
        QMetaObject::invokeMethod(
            this, [this, field] { openFilterPopup(field); }, Qt::QueuedConnection);
    });
    menu.addAction(u"Wyczyść filtr"_s, this, &SummaryGrid::clearFilters)
        ->setEnabled(!model_->layout().filters().empty());
    menu.exec(view_->header()->viewport()->mapToGlobal(position));
}
