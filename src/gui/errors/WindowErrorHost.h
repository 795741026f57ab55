#pragma once

#include "framework/errors/ErrorControl.h"
#include "framework/mail/ErrorMail.h"
#include "gui/errors/TFExceptionDlg.h"

class DataFolder;

// The error control's host in the window program: message boxes over the
// active window, screenshots of the program's windows, and "Obsługa błędów".
class WindowErrorHost : public ErrorControlHost {
public:
    // Mails one report; false with the reason in failure when it did not go.
    using Mailer = std::function<bool(const ErrorMailInput& report, QString& failure)>;

    // `mailer` null: reports can be copied or handed to the mail client, not sent directly.
    WindowErrorHost(QString supportAddress, QString subject, Mailer mailer);
    // The mail settings of COMMON.INI; a mailer only when they are complete and usable.
    static WindowErrorHost fromSettings(const DataFolder& folder);

    void showMessage(const QString& text) override;
    bool askToClose(const QString& question) override;
    void closeProgram() override;
    bool saveScreenshot(const QString& path) override;
    void showReport(const QString& report, const QString& screenshot) override;

private:
    ErrorDialogOptions options_;
    Mailer mailer_;
};
