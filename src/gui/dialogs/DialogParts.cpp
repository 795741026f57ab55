#include "gui/dialogs/DialogParts.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>

QDialogButtonBox* AddOkCancel(QDialog& dialog)
{
    auto* box = new QDialogButtonBox(&dialog);
    QPushButton* ok = box->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    QPushButton* cancel = box->addButton(QStringLiteral("Anuluj"), QDialogButtonBox::RejectRole);
    ok->setObjectName(QStringLiteral("btnOK"));
    cancel->setObjectName(QStringLiteral("btnCancel"));
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
