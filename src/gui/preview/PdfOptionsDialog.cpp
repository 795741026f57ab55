#include "gui/preview/PdfOptionsDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
QSpinBox* PageSpin(const QString& name, int pageCount, int value)
{
    auto* spin = new QSpinBox;
    spin->setObjectName(name);
    spin->setRange(1, std::max(pageCount, 1));
    spin->setValue(value);
    spin->setEnabled(false);
    return spin;
}
} // namespace

PdfOptionsDialog::PdfOptionsDialog(int pageCount, const QString& proposedPath, QWidget* parent)
    : QDialog(parent), pageCount_(std::max(pageCount, 1))
{
    setObjectName(u"PdfOptionsDialog"_s);
    setWindowTitle(u"Eksport do PDF"_s);
    openAfter_ = new QCheckBox(u"Otwórz po zapisaniu"_s);
    openAfter_->setObjectName(u"cbOpenAfter"_s);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(u"OK"_s);
    buttons->button(QDialogButtonBox::Cancel)->setText(u"Anuluj"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(createFileRow(proposedPath));
    layout->addWidget(createRangeBox(pageCount_));
    layout->addWidget(openAfter_);
    layout->addWidget(buttons);
    connect(path_, &QLineEdit::textChanged, buttons->button(QDialogButtonBox::Ok),
            [ok = buttons->button(QDialogButtonBox::Ok)](const QString& text) { ok->setEnabled(!text.isEmpty()); });
    resize(480, sizeHint().height());
}

QWidget* PdfOptionsDialog::createFileRow(const QString& proposedPath)
{
    auto* row = new QWidget;
    path_ = new QLineEdit(proposedPath);
    path_->setObjectName(u"edPath"_s);
    auto* browse = new QToolButton;
    browse->setObjectName(u"btBrowse"_s);
    browse->setText(u"..."_s);
    connect(browse, &QToolButton::clicked, this, &PdfOptionsDialog::browse);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(u"Plik:"_s));
    layout->addWidget(path_, 1);
    layout->addWidget(browse);
    return row;
}

QWidget* PdfOptionsDialog::createRangeBox(int pageCount)
{
    auto* box = new QGroupBox(u"Zakres stron"_s);
    allPages_ = new QRadioButton(u"Wszystkie strony"_s);
    allPages_->setObjectName(u"rbAllPages"_s);
    allPages_->setChecked(true);
    auto* range = new QRadioButton(u"Strony od"_s);
    range->setObjectName(u"rbPageRange"_s);
    firstPage_ = PageSpin(u"sbFirstPage"_s, pageCount, 1);
    lastPage_ = PageSpin(u"sbLastPage"_s, pageCount, pageCount);
    connect(range, &QRadioButton::toggled, firstPage_, &QSpinBox::setEnabled);
    connect(range, &QRadioButton::toggled, lastPage_, &QSpinBox::setEnabled);
    connect(firstPage_, &QSpinBox::valueChanged, lastPage_, &QSpinBox::setMinimum);

    auto* grid = new QGridLayout(box);
    grid->addWidget(allPages_, 0, 0, 1, 4);
    grid->addWidget(range, 1, 0);
    grid->addWidget(firstPage_, 1, 1);
    grid->addWidget(new QLabel(u"do"_s), 1, 2);
    grid->addWidget(lastPage_, 1, 3);
    grid->setColumnStretch(4, 1);
    return box;
}

void PdfOptionsDialog::browse()
{
    const QString chosen =
        QFileDialog::getSaveFileName(this, u"Zapisz do PDF"_s, path_->text(), u"Pliki PDF (*.pdf *.PDF)"_s);
    if (!chosen.isEmpty())
        path_->setText(chosen);
}

PdfChoice PdfOptionsDialog::choice() const
{
    if (allPages_->isChecked())
        return PdfChoice{path_->text(), 1, pageCount_, openAfter_->isChecked()};
    return PdfChoice{path_->text(), firstPage_->value(), lastPage_->value(), openAfter_->isChecked()};
}
