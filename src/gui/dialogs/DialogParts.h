#pragma once

class QDialog;
class QDialogButtonBox;
class QLineEdit;

// The "OK" / "Anuluj" row of the program's dialogs, wired to accept() and reject().
// The buttons are named "btnOK" and "btnCancel".
QDialogButtonBox* AddOkCancel(QDialog& dialog);

// Read-only, and greyed like a read-only Windows edit while the text stays black.
void MakeReadOnly(QLineEdit& edit);
