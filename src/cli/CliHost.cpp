#include "cli/CliHost.h"

#include <iostream>
#include <numeric>
#include <string>

QString ReadInputLine()
{
    std::string line;
    if (!std::getline(std::cin, line))
        return {};
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return QString::fromStdString(line);
}

void CliHost::statusTextChanged(StatusPanel panel, const QString& text)
{
    // One line per herd and per stage of a download; the clearing's and the
    // per-animal texts would flood the terminal.
    const bool herdText = panel == StatusPanel::Herd && text.size() > 7 && !text.endsWith(u"000");
    const bool stageText = panel == StatusPanel::Step && !text.isEmpty() && !text.contains(u':') &&
                           !text.startsWith(u"Czyszczenie") && !text.startsWith(u"Tworzenie");
    if (herdText || stageText)
        err_ << text << Qt::endl;
}

void CliHost::memoAppended(Memo memo, const QString& text)
{
    if (memo == Memo::Errors)
        err_ << text << Qt::endl;
}

void CliHost::showMessage(const QString& caption, const QString& text, MessageIcon)
{
    messages_.push_back({caption, text});
    err_ << caption << u' ' << text << Qt::endl;
}

// Without --yes the answer is read from standard input: "t" or "tak" is yes,
// anything else, or no input at all, is no.
bool CliHost::askYesNo(const QString& caption, const QString& text)
{
    if (!answerYes_) {
        err_ << caption << u' ' << text << u" [t/N] "_s << Qt::flush;
        const QString answer = ReadInputLine().trimmed().toLower();
        return answer == u"t" || answer == u"tak";
    }
    err_ << caption << u' ' << text << " [Tak]" << Qt::endl;
    return answerYes_;
}

// Only --resend-unconfirmed sends again what may have reached the registry; --yes does not.
bool CliHost::askToResend(const QString& question)
{
    err_ << u"Pytanie "_s << question
         << (resendUnconfirmed_ ? u" [Tak: --resend-unconfirmed]"_s
                                : u" [Nie: ponowne wysłanie wymaga --resend-unconfirmed]"_s)
         << Qt::endl;
    return resendUnconfirmed_;
}

// Without a grid, the summary rows are exported as the table holds them.
std::vector<int> CliHost::summaryRowsInDisplayOrder()
{
    std::vector<int> rows(static_cast<std::size_t>(summaryRows_));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}
