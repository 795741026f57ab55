#pragma once

#include "framework/OperationHost.h"

#include <QStringList>

#include <functional>
#include <map>
#include <vector>

using namespace Qt::StringLiterals;

// A host that remembers what a long operation told it and answers as set up.
class RecordingHost : public OperationHost {
public:
    struct Message {
        QString caption;
        QString text;
        MessageIcon icon;
    };

    std::vector<Message> messages;
    QStringList questions;
    QStringList stepTexts;
    QStringList statusLog;                       // "H:" herd panel, "S:" step panel, then the text, in order
    QStringList progressLog;                     // "bar:position/maximum", in order
    std::map<int, std::pair<int, int>> progress; // bar -> (position, maximum)
    bool answerYes = true;
    std::function<bool()> cancelWhen; // asked at every check of cancelRequested()
    bool busy = false;
    QString herdChoice = u"ALL"_s;
    std::optional<QString> useDirection;
    QStringList resendQuestions;
    bool answerResend = false;
    std::vector<int> summaryRows;

    QStringList messageTexts() const
    {
        QStringList texts;
        for (const Message& m : messages)
            texts.append(m.text);
        return texts;
    }

    void statusModeChanged(bool isBusy, bool) override { busy = isBusy; }
    void statusTextChanged(StatusPanel panel, const QString& text) override
    {
        if (panel == StatusPanel::Step)
            stepTexts.append(text);
        statusLog.append((panel == StatusPanel::Step ? u"S:"_s : u"H:"_s) + text);
    }
    void progressChanged(int bar, int position, int maximum) override
    {
        progress[bar] = {position, maximum};
        progressLog.append(u"%1:%2/%3"_s.arg(bar).arg(position).arg(maximum));
    }
    void memoAppended(Memo, const QString&) override {}
    void memoCleared(Memo) override {}
    void showMessage(const QString& caption, const QString& text, MessageIcon icon) override
    {
        messages.push_back({caption, text, icon});
    }
    bool askYesNo(const QString&, const QString& text) override
    {
        questions.append(text);
        return answerYes;
    }
    bool cancelRequested() override { return cancelWhen && cancelWhen(); }
    std::optional<QString> askHerd() override
    {
        return herdChoice.isNull() ? std::nullopt : std::optional<QString>(herdChoice);
    }
    std::optional<QString> askUseDirection() override { return useDirection; }
    bool askToResend(const QString& question) override
    {
        resendQuestions.append(question);
        return answerResend;
    }
    std::vector<int> summaryRowsInDisplayOrder() override { return summaryRows; }
    void openWithDesktop(const QString&) override {}
};
