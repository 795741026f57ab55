#pragma once

#include "framework/errors/ErrorControl.h"

#include <QFile>
#include <QStringList>

// An error control host that remembers what it was asked to show and answers as set up.
struct RecordingErrorHost : ErrorControlHost {
    QStringList messages;
    QStringList questions;
    QStringList reports;
    QStringList screenshots;
    bool answerClose = false;
    bool closed = false;

    void showMessage(const QString& text) override { messages.append(text); }
    bool askToClose(const QString& question) override
    {
        questions.append(question);
        return answerClose;
    }
    void closeProgram() override { closed = true; }
    bool saveScreenshot(const QString& path) override
    {
        screenshots.append(path);
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write("JPEG") == 4;
    }
    void showReport(const QString& report, const QString&) override { reports.append(report); }
};
