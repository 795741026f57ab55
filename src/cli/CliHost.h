#pragma once

#include "core/session/SessionDump.h"
#include "framework/OperationHost.h"

#include <QTextStream>

#include <vector>

using namespace Qt::StringLiterals;

// One line of standard input without its line end; null at the end of input.
// Lines are taken one at a time, so a password and an answer can follow each other.
QString ReadInputLine();

// The terminal as the host of long operations: progress and messages go to
// stderr, questions are answered by the command line.
class CliHost : public OperationHost {
public:
    explicit CliHost(bool answerYes) : answerYes_(answerYes), err_(stderr) {}

    const std::vector<ShownMessage>& messages() const { return messages_; }

    void statusModeChanged(bool, bool) override {}
    void statusTextChanged(StatusPanel panel, const QString& text) override;
    void progressChanged(int, int, int) override {}
    void memoAppended(Memo memo, const QString& text) override;
    void memoCleared(Memo) override {}
    void showMessage(const QString& caption, const QString& text, MessageIcon icon) override;
    bool askYesNo(const QString& caption, const QString& text) override;
    std::optional<QString> askHerd() override { return u"ALL"_s; }
    std::optional<QString> askUseDirection() override { return useDirection_; }
    void setUseDirection(const QString& code) { useDirection_ = code; }
    bool askToResend(const QString& question) override;
    void setResendUnconfirmed(bool resend) { resendUnconfirmed_ = resend; }
    std::vector<int> summaryRowsInDisplayOrder() override;
    void openWithDesktop(const QString&) override {}
    void setSummaryRowCount(int rows) { summaryRows_ = rows; }

private:
    bool answerYes_;
    std::optional<QString> useDirection_;
    bool resendUnconfirmed_ = false;
    QTextStream err_;
    std::vector<ShownMessage> messages_;
    int summaryRows_ = 0;
};
