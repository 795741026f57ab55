#pragma once

#include "gui/preview/TfpRapPrev_FR3.h"
#include "gui/window/UserDialogs.h"
#include "reports/PreparedReport.h"

#include <QStringList>

#include <vector>

using namespace Qt::StringLiterals;

// Answers the window's questions as a test sets them up and remembers what it
// was told, the previews it was asked to show included.
class RecordingDialogs : public UserDialogs {
public:
    struct Shown {
        QString caption;
        QString text;
    };
    struct Preview {
        std::shared_ptr<const PreparedReport> report;
        PreviewSettings settings;
    };
    std::vector<Shown> messages;
    QStringList questions;
    bool answerYes = true;
    std::function<void()> whenAsked; // runs while a question is open
    QStringList cautiousQuestions;   // asked with No as the default answer
    bool answerCautiousYes = false;
    std::optional<QString> herdChoice = u"ALL"_s;
    std::optional<QString> directionChoice;
    std::optional<ChosenProducer> producerChoice;
    QList<qint32> producerListsOpenedAt; // the last chosen ID each "Wybór producenta" started at
    std::optional<qint64> archivedChoice;
    std::optional<QDate> recountChoice;
    std::optional<ControlListChoice> controlListChoice;
    QStringList controlListHerds; // the herd codes the last "Lista kontrolna" offered
    int comparisonsOpened = 0;
    QStringList opened;
    std::vector<Preview> previews;
    QStringList designed;

    void message(const QString& caption, const QString& text, MessageIcon) override
    {
        messages.push_back({caption, text});
    }
    bool question(const QString&, const QString& text) override
    {
        questions.append(text);
        if (whenAsked)
            whenAsked();
        return answerYes;
    }
    bool cautiousQuestion(const QString&, const QString& text) override
    {
        cautiousQuestions.append(text);
        return answerCautiousYes;
    }
    std::optional<QString> herd() override { return herdChoice; }
    std::optional<QString> useDirection() override { return directionChoice; }
    std::optional<ChosenProducer> chooseProducer(const DataFolder&, qint32 lastChosenId) override
    {
        producerListsOpenedAt.append(lastChosenId);
        return producerChoice;
    }
    std::optional<qint64> chooseArchived(const DataFolder&) override { return archivedChoice; }
    std::optional<QDate> recountDate(QDate) override { return recountChoice; }
    std::optional<ControlListChoice> controlList(const QStringList& herdCodes) override
    {
        controlListHerds = herdCodes;
        return controlListChoice;
    }
    void compareDownloads(const DataFolder&, TdmulmxDataBase_FR3&, const std::function<void(const PrintJob&)>&) override
    {
        ++comparisonsOpened;
    }
    void openFile(const QString& path) override { opened.append(path); }
    void showPreview(std::shared_ptr<const PreparedReport> report, const PreviewSettings& settings) override
    {
        previews.push_back({std::move(report), settings});
    }
    void designTemplate(const QString& path, const std::function<PreparedReport(const ReportTemplate&)>&) override
    {
        designed.append(path);
    }
    QStringList texts() const
    {
        QStringList all;
        for (const Shown& m : messages)
            all.append(m.text);
        return all;
    }
};
