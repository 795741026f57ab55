#include "gui/dialogs/TfGET_PARAM.h"

#include "analysis/AgeLimits.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"
#include "gui/dialogs/AgeLimitsPanel.h"
#include "gui/dialogs/DialogParts.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
QString PathsSection()
{
    return u"PATHS"_s;
}

QString CsvKey()
{
    return u"CSV"_s;
}

bool AskYesNo(QWidget* parent, const QString& title, const QString& text)
{
    return QMessageBox::question(parent, title, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No) ==
           QMessageBox::Yes;
}

QString PickFolder(QWidget* parent, const QString& startFolder)
{
    return QFileDialog::getExistingDirectory(parent, u"Ścieżka dla pliku CSV"_s, startFolder);
}

void ShowError(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox::critical(parent, title, text);
}
} // namespace

TfGET_PARAM::TfGET_PARAM(QString settingsFile, QString defaultCsvFolder, QWidget* parent)
    : QDialog(parent), settingsFile_(std::move(settingsFile)), defaultCsvFolder_(std::move(defaultCsvFolder)),
      question_(AskYesNo), folderPicker_(PickFolder), errorReport_(ShowError)
{
    setObjectName(u"TfGET_PARAM"_s);
    setWindowTitle(u"Parametry"_s);
    auto* restore = new QPushButton(u"Przywrócenie wartości domyślnych"_s);
    restore->setObjectName(u"btnRestoreDefaults"_s);
    restore->setAutoDefault(false);
    connect(restore, &QPushButton::clicked, this, &TfGET_PARAM::restoreDefaults);
    limitsPanel_ = new AgeLimitsPanel;

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(restore, 0, Qt::AlignLeft);
    layout->addWidget(limitsPanel_);
    layout->addWidget(buildCsvRow());
    layout->addWidget(AddOkCancel(*this));
    layout->setSizeConstraint(QLayout::SetFixedSize);
    load();
}

QWidget* TfGET_PARAM::buildCsvRow()
{
    auto* row = new QWidget;
    auto* label = new QLabel(u"Ścieżka dla pliku CSV"_s);
    csvEdit_ = new QLineEdit;
    csvEdit_->setObjectName(u"edCSV"_s);
    MakeReadOnly(*csvEdit_);
    label->setBuddy(csvEdit_);
    auto* browse = new QToolButton;
    browse->setObjectName(u"btnCsvFolder"_s);
    browse->setText(u"..."_s);
    browse->setToolTip(u"Wybierz folder"_s);
    connect(browse, &QToolButton::clicked, this, &TfGET_PARAM::chooseCsvFolder);

    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(csvEdit_, 1);
    layout->addWidget(browse);
    return row;
}

void TfGET_PARAM::load()
{
    const IniFile ini(settingsFile_);
    limitsPanel_->showLimits(AgeLimits::readAsWritten(ini));
    csvEdit_->setText(ini.readString(PathsSection(), CsvKey(), defaultCsvFolder_));
    csvEdit_->setCursorPosition(0);
}

bool TfGET_PARAM::save()
{
    try {
        IniFile ini(settingsFile_);
        limitsPanel_->limits().write(ini);
        ini.writeString(PathsSection(), CsvKey(), csvEdit_->text());
        return true;
    } catch (const FileWriteError& error) {
        errorReport_(this, u"Błąd..."_s, u"Nie zapisano parametrów.\n%1"_s.arg(error.message()));
        return false;
    }
}

void TfGET_PARAM::restoreDefaults()
{
    if (!question_(this, u"Pytanie"_s, u"Czy przywrócić wartości domyślne? Nie będzie można cofnąć przywrócenia. "_s))
        return;
    try {
        IniFile(settingsFile_).eraseSection(AgeLimitsSection());
    } catch (const FileWriteError& error) {
        errorReport_(this, u"Błąd..."_s, u"Nie przywrócono wartości domyślnych.\n%1"_s.arg(error.message()));
        return;
    }
    load();
}

void TfGET_PARAM::chooseCsvFolder()
{
    const QString chosen = folderPicker_(this, csvEdit_->text());
    if (chosen.isEmpty())
        return;
    csvEdit_->setText(QDir::toNativeSeparators(chosen));
    csvEdit_->setCursorPosition(0);
}

QString TfGET_PARAM::csvFolder() const
{
    return csvEdit_->text();
}

void TfGET_PARAM::accept()
{
    if (save())
        QDialog::accept();
}

void OpenParameters(const QString& settingsFile, const QString& defaultCsvFolder, QWidget* parent)
{
    TfGET_PARAM dialog(settingsFile, defaultCsvFolder, parent);
    dialog.exec();
}
