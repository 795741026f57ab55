#include "gui/dialogs/TfGET_CO_EXP_WYDR.h"

#include "gui/dialogs/DialogParts.h"

#include <QCheckBox>
#include <QColor>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
const QColor MissingBackground(0xff, 0xe4, 0xe1);
const QColor MissingText(0xc0, 0x00, 0x00);
} // namespace

TfGET_CO_EXP_WYDR::TfGET_CO_EXP_WYDR(QWidget* parent) : QDialog(parent)
{
    setObjectName(u"TfGET_CO_EXP_WYDR"_s);
    setWindowTitle(u"Zakres dat"_s);

    auto* group = new QGroupBox(u"Dane podstawowe"_s);
    allHerds_ = new QCheckBox(u"Ogółem wraz z poszczególnymi stadami"_s);
    allHerds_->setObjectName(u"edOgolem"_s);
    herdLabel_ = new QLabel(u"Stado (\"000\" oznacza ogółem)"_s);
    herdEdit_ = new QLineEdit;
    herdEdit_->setObjectName(u"edStado"_s);
    herdLabel_->setBuddy(herdEdit_);
    missingHint_ = new QLabel(u"Podaj numer stada."_s);
    missingHint_->setObjectName(u"lblBrakStada"_s);
    QPalette red = missingHint_->palette();
    red.setColor(QPalette::WindowText, MissingText);
    missingHint_->setPalette(red);
    missingHint_->setVisible(false);

    auto* grid = new QGridLayout(group);
    grid->addWidget(allHerds_, 0, 0, 1, 2);
    grid->addWidget(herdLabel_, 1, 0);
    grid->addWidget(herdEdit_, 1, 1);
    grid->addWidget(missingHint_, 2, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(AddOkCancel(*this));
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(allHerds_, &QCheckBox::toggled, this, &TfGET_CO_EXP_WYDR::allHerdsToggled);
    connect(herdEdit_, &QLineEdit::textEdited, this, [this] { showMissingHerd(false); });
    allHerds_->setChecked(true);
    allHerdsToggled(true);
}

QString TfGET_CO_EXP_WYDR::herd() const
{
    return allHerds_->isChecked() ? u"ALL"_s : herdEdit_->text().trimmed();
}

void TfGET_CO_EXP_WYDR::allHerdsToggled(bool checked)
{
    herdLabel_->setEnabled(!checked);
    herdEdit_->setEnabled(!checked);
    showMissingHerd(false);
    if (!checked)
        herdEdit_->setFocus();
}

void TfGET_CO_EXP_WYDR::showMissingHerd(bool missing)
{
    missingHint_->setVisible(missing);
    QPalette palette; // an empty palette inherits the dialog's again
    if (missing) {
        palette = herdEdit_->palette();
        palette.setColor(QPalette::Base, MissingBackground);
    }
    herdEdit_->setPalette(palette);
}

void TfGET_CO_EXP_WYDR::accept()
{
    if (herd().isEmpty()) {
        showMissingHerd(true);
        herdEdit_->setFocus();
        return;
    }
    QDialog::accept();
}

int AskHerd(QString& herd, QWidget* parent)
{
    TfGET_CO_EXP_WYDR dialog(parent);
    const int result = dialog.exec();
    if (result == QDialog::Accepted)
        herd = dialog.herd();
    return result;
}
