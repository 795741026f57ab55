#include "gui/dialogs/ControlListDialog.h"

#include "gui/dialogs/DialogParts.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>

using namespace Qt::StringLiterals;

std::optional<ControlListChoice> AskControlList(const QStringList& herdCodes, QWidget* parent)
{
    QDialog dialog(parent);
    dialog.setObjectName(u"fListaKontrolna"_s);
    dialog.setWindowTitle(u"Lista kontrolna"_s);
    auto* date = new QDateEdit(QDate::currentDate(), &dialog);
    date->setObjectName(u"edDzienKontroli"_s);
    date->setDisplayFormat(u"dd.MM.yyyy"_s);
    date->setCalendarPopup(true);
    auto* herd = new QComboBox(&dialog);
    herd->setObjectName(u"cbStado"_s);
    herd->addItem(u"Wszystkie stada"_s, u"ALL"_s);
    for (const QString& code : herdCodes)
        herd->addItem(u"Stado "_s + code, code);
    auto* form = new QFormLayout(&dialog);
    form->addRow(u"Dzień kontroli:"_s, date);
    form->addRow(u"Stada:"_s, herd);
    form->addRow(AddOkCancel(dialog));
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return ControlListChoice{date->date(), herd->currentData().toString()};
}
