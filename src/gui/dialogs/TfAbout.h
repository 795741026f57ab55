#pragma once

#include <QDialog>

// "O programie": the program's title, the support e-mail (the address error
// reports go to, "Support" of section [SMTP] in COMMON.INI) and the version of
// the application object. Its only command closes it.
class TfAbout : public QDialog {
    Q_OBJECT

public:
    explicit TfAbout(const QString& commonSettingsFile, QWidget* parent = nullptr);

    static QString supportEmail(const QString& commonSettingsFile);
};

void ShowAbout(const QString& commonSettingsFile, QWidget* parent);
