#include "gui/dialogs/TfAbout.h"

#include "framework/mail/MailSettings.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
QLabel* NamedLabel(const QString& text, const char* name)
{
    auto* label = new QLabel(text);
    label->setObjectName(QLatin1StringView(name));
    return label;
}

QLabel* TitleLabel()
{
    QLabel* title = NamedLabel(u"Fernhill Halvarn Bydła"_s, "lblTytul");
    QFont font = title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.4);
    title->setFont(font);
    return title;
}

QDialogButtonBox* CloseButton(QDialog& dialog)
{
    auto* box = new QDialogButtonBox(&dialog);
    QPushButton* close = box->addButton(u"Zamknij"_s, QDialogButtonBox::RejectRole);
    close->setObjectName(u"btnClose"_s);
    close->setDefault(true);
    QObject::connect(box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return box;
}
} // namespace

TfAbout::TfAbout(const QString& commonSettingsFile, QWidget* parent) : QDialog(parent)
{
    setObjectName(u"TfAbout"_s);
    setWindowTitle(u"O programie"_s);

    QLabel* support = NamedLabel(u"Pomoc techniczna: "_s + supportEmail(commonSettingsFile), "lblPomocTechniczna");
    support->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QLabel* version = NamedLabel(u"Wersja: "_s + QCoreApplication::applicationVersion(), "lblWersja");

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addWidget(TitleLabel());
    layout->addWidget(version);
    layout->addWidget(support);
    layout->addSpacing(8);
    layout->addWidget(CloseButton(*this));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString TfAbout::supportEmail(const QString& commonSettingsFile)
{
    QStringList problems;
    const QString configured = MailSettings::read(commonSettingsFile, problems).support;
    return configured.isEmpty() ? u"pomoc@fernhill.pl"_s : configured;
}

void ShowAbout(const QString& commonSettingsFile, QWidget* parent)
{
    TfAbout dialog(commonSettingsFile, parent);
    dialog.exec();
}
