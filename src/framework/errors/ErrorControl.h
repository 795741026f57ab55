#pragma once

#include "framework/errors/ErrorLog.h"
#include "framework/errors/ErrorReport.h"

#include <QDateTime>

#include <functional>

// What the error control needs from the program it runs in: the window shows
// dialogs and takes screenshots, the command line prints, tests record.
class ErrorControlHost {
public:
    virtual ~ErrorControlHost() = default;

    // An error whose message is meant for the user, shown the ordinary way.
    virtual void showMessage(const QString& text) = 0;
    virtual bool askToClose(const QString& question) = 0;
    virtual void closeProgram() = 0;
    // Saves a JPEG of the program's windows; false when there is nothing to take or it cannot be written.
    virtual bool saveScreenshot(const QString& path) = 0;
    virtual void showReport(const QString& report, const QString& screenshot) = 0;
};

struct ErrorControlSettings {
    QString logPath;
    QString screenshotFolder; // a screenshot is taken only when this folder exists
    ProductNames names;
};

// The one place every unhandled error reaches. An error the program raised
// for the user (HalvarnError) is shown as a message; otherwise a report is
// composed with its call stack, scrubbed of secrets, logged, and shown with a
// screenshot. From the second error on the user is asked whether to close.
class ErrorControl {
public:
    ErrorControl(ErrorControlSettings settings, ErrorControlHost& host);

    // What must never appear in a report: the log-in, the password, the token as they are at the time of the error.
    void setSecrets(std::function<QStringList()> source) { secrets_ = std::move(source); }
    void handle(const std::exception_ptr& error);
    // The report of an error the caller describes itself (a crash of an earlier run).
    void report(const CaughtError& error);
    // The report's text as it is shown, logged and sent.
    QString composeReport(const CaughtError& error, const QString& attachment) const;

    int errorCount() const { return count_; }
    bool closing() const { return closing_; }

private:
    QString takeScreenshot();
    SecretScrubber scrubber() const;

    ErrorControlSettings settings_;
    ErrorControlHost& host_;
    std::function<QStringList()> secrets_;
    int count_ = 0;
    bool closing_ = false;
};

// "yyyymmdd-hhnnss", then "-" and the suffix when one is given, then ".jpg".
QString ScreenshotFileName(const QDateTime& when, const QString& suffix = {});
