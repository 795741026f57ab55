#include "gui/dialogs/TfAbout.h"

#include "framework/IniFile.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QLabel* NamedLabel(const QString& text, const char* name)
{
    auto* label = new QLabel(text);
    label->setObjectName(QLatin1StringView(name));
    return label;
}

QLabel* TitleLabel()
{
    QLabel* title = NamedLabel(QStringLiteral("Fernhill Halvarn Bydła"), "lblTytul");
    QFont font = title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.4);
    title->setFont(font);
    return title;
}

QDialogButtonBox* CloseButton(QDialog& dialog)
{
    auto* box = new QDialogButtonBox(&dialog);
    QPushButton* close = box->addButton(QStringLiteral("Zamknij"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("btnClose"));
    close->setDefault(true);
    QObject::connect(box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return box;
}
} // namespace

TfAbout::TfAbout(const QString& settingsFile, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("TfAbout"));
    setWindowTitle(QStringLiteral("O programie"));

    QLabel* support =
        NamedLabel(QStringLiteral("Pomoc techniczna: ") + supportEmail(settingsFile), "lblPomocTechniczna");
    support->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QLabel* version = NamedLabel(QStringLiteral("Wersja: ") + QCoreApplication::applicationVersion(), "lblWersja");

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addWidget(TitleLabel());
    layout->addWidget(version);
    layout->addWidget(support);
    layout->addSpacing(8);
    layout->addWidget(CloseButton(*this));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString TfAbout::supportEmail(const QString& settingsFile)
{
    const QString fallback = QStringLiteral("pomoc@fernhill.pl");
    const QString configured =
        IniFile(settingsFile).readString(QStringLiteral("POMOC"), QStringLiteral("Email"), fallback);
    return configured.isEmpty() ? fallback : configured;
}

void ShowAbout(const QString& settingsFile, QWidget* parent)
{
    TfAbout dialog(settingsFile, parent);
    dialog.exec();
}
