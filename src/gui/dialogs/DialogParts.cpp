#include "gui/dialogs/DialogParts.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>

using namespace Qt::StringLiterals;

QDialogButtonBox* AddOkCancel(QDialog& dialog)
{
    auto* box = new QDialogButtonBox(&dialog);
    QPushButton* ok = box->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
    QPushButton* cancel = box->addButton(u"Anuluj"_s, QDialogButtonBox::RejectRole);
    ok->setObjectName(u"btnOK"_s);
    cancel->setObjectName(u"btnCancel"_s);
    ok->setDefault(true);
    QObject::connect(box, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return box;
}

void MakeReadOnly(QLineEdit& edit)
{
    edit.setReadOnly(true);
    QPalette greyed = edit.palette();
    greyed.setColor(QPalette::Base, greyed.color(QPalette::Window));
    edit.setPalette(greyed);
}
