#pragma once

#include "framework/OperationHost.h"

#include <QMessageBox>

// The message box icon for an operation's message.
inline QMessageBox::Icon MessageBoxIcon(MessageIcon icon)
{
    switch (icon) {
    case MessageIcon::Information: return QMessageBox::Information;
    case MessageIcon::Warning: return QMessageBox::Warning;
    case MessageIcon::Error: return QMessageBox::Critical;
    case MessageIcon::Question: return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}
