#pragma once

#include <QDialog>

// "O programie": the program's title, the support e-mail ("POMOC"/"Email" of the
// settings file) and the version of the application object. Its only command closes it.
class TfAbout : public QDialog {
    Q_OBJECT

public:
    explicit TfAbout(const QString& settingsFile, QWidget* parent = nullptr);

    static QString supportEmail(const QString& settingsFile);
};

void ShowAbout(const QString& settingsFile, QWidget* parent);
