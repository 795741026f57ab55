#include "gui/dialogs/MessageBoxPrompts.h"

#include "gui/preview/MessageBoxIcon.h"

#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

void MessageBoxPrompts::showMessage(const QString& caption, const QString& text, MessageIcon icon)
{
    QMessageBox box(MessageBoxIcon(icon), caption, text, QMessageBox::Ok, parent_);
    box.exec();
}

bool MessageBoxPrompts::askYesNo(const QString& caption, const QString& text)
{
    return ask(caption, text, true);
}

bool MessageBoxPrompts::askYesNoDefaultNo(const QString& caption, const QString& text)
{
    return ask(caption, text, false);
}

bool MessageBoxPrompts::ask(const QString& caption, const QString& text, bool defaultYes)
{
    QMessageBox box(QMessageBox::Question, caption, text, QMessageBox::Yes | QMessageBox::No, parent_);
    box.button(QMessageBox::Yes)->setText(u"Tak"_s);
    box.button(QMessageBox::No)->setText(u"Nie"_s);
    box.setDefaultButton(defaultYes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}
