#include "gui/archive/TfArchiwum.h"

#include "gui/dialogs/DialogParts.h"
#include "gui/dialogs/MessageBoxPrompts.h"

#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
QTableWidgetItem* Cell(const QString& text, Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter)
{
    auto* item = new QTableWidgetItem(text);
    item->setTextAlignment(alignment);
    return item;
}

QStringList CellTexts(const ArchivedDownload& d)
{
    return {QString::number(d.id),
            d.producer,
            d.name,
            d.stateDate.toString(u"dd.MM.yyyy"_s),
            d.referenceDate.toString(u"dd.MM.yyyy"_s),
            d.downloadedAt.toString(u"dd.MM.yyyy HH:mm"_s),
            QString::number(d.animals),
            d.incompleteHerds == 0 ? QString() : QString::number(d.incompleteHerds)};
}

QPushButton* NamedButton(const char* name, const QString& caption, QWidget* parent)
{
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QLatin1String(name));
    return button;
}
} // namespace

TfArchiwum::TfArchiwum(const QString& archivePath, QWidget* parent, UserPrompts* prompts)
    : QDialog(parent), prompts_(prompts, this), archive_(archivePath)
{
    setObjectName(u"fArchiwum"_s);
    setWindowTitle(u"Archiwum pobrań"_s);
    grid_ = new QTableWidget(0, 8, this);
    grid_->setObjectName(u"gridArchiwum"_s);
    grid_->setHorizontalHeaderLabels({u"Nr"_s, u"Producent"_s, u"Nazwa"_s, u"Stan na dzień"_s, u"Halvarn na dzień"_s,
                                      u"Pobrano"_s, u"Zwierząt"_s, u"Niepełne stada"_s});
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->verticalHeader()->hide();
    grid_->horizontalHeader()->setStretchLastSection(true);
    connect(grid_, &QTableWidget::cellDoubleClicked, this, [this] {
        if (currentId())
            accept();
    });
    connect(grid_, &QTableWidget::itemSelectionChanged, this, &TfArchiwum::updateButtons);

    openButton_ = NamedButton("btnOtworz", u"Otwórz"_s, this);
    openButton_->setDefault(true);
    removeButton_ = NamedButton("btnUsun", u"Usuń"_s, this);
    auto* close = NamedButton("btnZamknij", u"Zamknij"_s, this);
    connect(openButton_, &QPushButton::clicked, this, &QDialog::accept);
    connect(removeButton_, &QPushButton::clicked, this, &TfArchiwum::removeCurrent);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(removeButton_);
    buttons->addStretch();
    buttons->addWidget(openButton_);
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(grid_, 1);
    layout->addLayout(buttons);
    showDownloads();
    resize(900, 420);
}

void TfArchiwum::showDownloads()
{
    downloads_ = archive_.list();
    grid_->setRowCount(static_cast<int>(downloads_.size()));
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    for (int row = 0; row < grid_->rowCount(); ++row) {
        const QStringList texts = CellTexts(downloads_[static_cast<std::size_t>(row)]);
        for (int column = 0; column < texts.size(); ++column) {
            const bool number = column == 0 || column >= 6;
            grid_->setItem(row, column, Cell(texts[column], number ? right : Qt::AlignLeft | Qt::AlignVCenter));
        }
    }
    grid_->resizeColumnsToContents();
    if (grid_->rowCount() > 0)
        grid_->selectRow(0);
    updateButtons();
}

std::optional<qint64> TfArchiwum::currentId() const
{
    const int row = grid_->currentRow();
    if (row < 0 || row >= static_cast<int>(downloads_.size()) || grid_->selectedItems().isEmpty())
        return std::nullopt;
    return downloads_[static_cast<std::size_t>(row)].id;
}

void TfArchiwum::updateButtons()
{
    const bool chosen = currentId().has_value();
    openButton_->setEnabled(chosen);
    removeButton_->setEnabled(chosen);
}

void TfArchiwum::removeCurrent()
{
    const std::optional<qint64> id = currentId();
    if (!id)
        return;
    const ArchivedDownload& d = downloads_[static_cast<std::size_t>(grid_->currentRow())];
    if (!prompts_->askYesNo(u"Pytanie"_s, u"Czy usunąć z archiwum pobranie nr %1 (%2, %3)?"_s.arg(d.id).arg(
                                              d.producer, d.downloadedAt.toString(u"dd.MM.yyyy HH:mm"_s))))
        return;
    try {
        archive_.remove(*id);
    } catch (const ArchiveError& error) {
        prompts_->showMessage(u"Błąd"_s, error.message(), MessageIcon::Error);
    }
    showDownloads();
}

std::optional<qint64> ChooseArchivedDownload(const QString& archivePath, QWidget* parent)
{
    try {
        TfArchiwum dialog(archivePath, parent);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        return dialog.currentId();
    } catch (const ArchiveError& error) {
        MessageBoxPrompts(parent).showMessage(u"Błąd"_s, error.message(), MessageIcon::Error);
        return std::nullopt;
    }
}

std::optional<QDate> AskRecountDate(QDate current, QWidget* parent)
{
    QDialog dialog(parent);
    dialog.setObjectName(u"fPrzelicz"_s);
    dialog.setWindowTitle(u"Przelicz na dzień"_s);
    auto* date = new QDateEdit(current, &dialog);
    date->setObjectName(u"edPrzeliczNaDzien"_s);
    date->setDisplayFormat(u"dd.MM.yyyy"_s);
    date->setCalendarPopup(true);
    auto* form = new QFormLayout(&dialog);
    form->addRow(u"Halvarn na dzień:"_s, date);
    form->addRow(AddOkCancel(dialog));
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return date->date();
}
