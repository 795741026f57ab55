#include "gui/producers/TfGET_KNTRH_LIST.h"

#include "gui/dialogs/DialogParts.h"
#include "gui/dialogs/MessageBoxPrompts.h"
#include "gui/grids/GridViewSetup.h"
#include "gui/producers/ProducerGrid.h"
#include "gui/producers/TfGET_KNTRH_DET.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr int VisibleRows = 20;

QPushButton* ActionButton(const QString& caption, const QString& objectName)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(objectName);
    button->setAutoDefault(false);
    return button;
}

} // namespace

TfGET_KNTRH_LIST::TfGET_KNTRH_LIST(const DataFolder& folder, qint32 lastChosenId, QWidget* parent, UserPrompts* prompts)
    : QDialog(parent), prompts_(prompts, this), list_(folder, prompts_.get()),
      detailsEditor_([this](const ProducerEntry& start) { return AskProducerDetails(start, this); })
{
    setObjectName(u"TfGET_KNTRH_LIST"_s);
    setWindowTitle(u"Lista kontrahentów"_s);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildGrid());
    layout->addLayout(buildButtons());

    list_.open();
    showRecords();
    goToId(lastChosenId);
}

QTableView* TfGET_KNTRH_LIST::buildGrid()
{
    model_ = new QStandardItemModel(this);
    grid_ = new QTableView;
    grid_->setObjectName(u"cxGrid"_s);
    grid_->setModel(model_);
    SetUpGridView(*grid_);
    grid_->verticalHeader()->hide();
    grid_->verticalHeader()->setDefaultSectionSize(grid_->fontMetrics().height() + 6);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &TfGET_KNTRH_LIST::updateButtons);
    connect(grid_, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.isValid())
            accept();
    });
    return grid_;
}

QLayout* TfGET_KNTRH_LIST::buildButtons()
{
    QPushButton* add = ActionButton(u"Nowy"_s, u"btnNowy"_s);
    editButton_ = ActionButton(u"Edycja"_s, u"btnEdycja"_s);
    removeButton_ = ActionButton(u"Usuń"_s, u"btnUsun"_s);
    connect(add, &QPushButton::clicked, this, &TfGET_KNTRH_LIST::addEntry);
    connect(editButton_, &QPushButton::clicked, this, &TfGET_KNTRH_LIST::editCurrent);
    connect(removeButton_, &QPushButton::clicked, this, &TfGET_KNTRH_LIST::removeCurrent);
    QDialogButtonBox* okCancel = AddOkCancel(*this);
    okButton_ = okCancel->findChild<QPushButton*>(u"btnOK"_s);

    auto* row = new QHBoxLayout;
    row->addWidget(add);
    row->addWidget(editButton_);
    row->addWidget(removeButton_);
    row->addStretch();
    row->addWidget(okCancel);
    return row;
}

// Wide enough to show every column, and about a score of rows; never smaller than the user made it.
void TfGET_KNTRH_LIST::fitWidthToColumns()
{
    const int columns =
        grid_->horizontalHeader()->length() + 2 * grid_->frameWidth() + grid_->verticalScrollBar()->sizeHint().width();
    const QMargins margins = layout()->contentsMargins();
    const int rows = grid_->horizontalHeader()->sizeHint().height() +
                     VisibleRows * grid_->verticalHeader()->defaultSectionSize() + 2 * grid_->frameWidth();
    resize(std::max(width(), columns + margins.left() + margins.right()),
           std::max(height(), rows + sizeHint().height() - grid_->sizeHint().height()));
}

// The grid again from the list as it is now; the caller stands on a row after it.
void TfGET_KNTRH_LIST::showRecords()
{
    ShowProducers(*model_, list_.records());
    grid_->resizeColumnsToContents();
    fitWidthToColumns();
    updateButtons();
}

void TfGET_KNTRH_LIST::goToRow(int row)
{
    if (model_->rowCount() == 0)
        return;
    const QModelIndex index = model_->index(std::clamp(row, 0, model_->rowCount() - 1), 0);
    grid_->setCurrentIndex(index);
    grid_->scrollTo(index);
}

void TfGET_KNTRH_LIST::goToId(qint32 id)
{
    goToRow(std::max(RowOfProducer(*model_, id), 0));
}

void TfGET_KNTRH_LIST::updateButtons()
{
    const bool onRow = currentId().has_value();
    editButton_->setEnabled(onRow);
    removeButton_->setEnabled(onRow);
    okButton_->setEnabled(onRow);
}

std::optional<qint32> TfGET_KNTRH_LIST::currentId() const
{
    const QModelIndex current = grid_->currentIndex();
    if (!current.isValid())
        return std::nullopt;
    return ProducerIdOfRow(*model_, current.row());
}

std::optional<ChosenProducer> TfGET_KNTRH_LIST::chosen() const
{
    const std::optional<qint32> id = currentId();
    const ProducerRecord* record = id ? list_.find(*id) : nullptr;
    if (!record)
        return std::nullopt;
    return ChosenProducer{record->id, list_.entry(*record)};
}

void TfGET_KNTRH_LIST::addEntry()
{
    const std::optional<ProducerEntry> entry = detailsEditor_(ProducerEntry{});
    if (!entry)
        return;
    const std::optional<qint32> added = list_.add(*entry);
    const qint32 standOn = added.value_or(currentId().value_or(0));
    showRecords();
    goToId(standOn);
}

void TfGET_KNTRH_LIST::editCurrent()
{
    const std::optional<ChosenProducer> current = chosen();
    if (!current)
        return;
    const std::optional<ProducerEntry> entry = detailsEditor_(current->entry);
    if (!entry)
        return;
    list_.edit(current->id, *entry);
    showRecords();
    goToId(current->id);
}

// The row that takes the removed one's place becomes current.
void TfGET_KNTRH_LIST::removeCurrent()
{
    const std::optional<qint32> id = currentId();
    if (!id)
        return;
    const int row = grid_->currentIndex().row();
    const bool removed = list_.remove(*id);
    showRecords();
    if (removed)
        goToRow(row);
    else
        goToId(*id);
}

void TfGET_KNTRH_LIST::accept()
{
    if (currentId())
        QDialog::accept();
}

std::optional<ChosenProducer> ChooseProducer(const DataFolder& folder, qint32 lastChosenId, QWidget* parent)
{
    TfGET_KNTRH_LIST dialog(folder, lastChosenId, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.chosen();
}
