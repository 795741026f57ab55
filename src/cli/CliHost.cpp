#include "cli/CliHost.h"

#include <numeric>

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

bool CliHost::askYesNo(const QString& caption, const QString& text)
{
    err_ << caption << u' ' << text << (answerYes_ ? " [Tak]" : " [Nie]") << Qt::endl;
    return answerYes_;
}

// Without a grid, the summary rows are exported as the table holds them.
std::vector<int> CliHost::summaryRowsInDisplayOrder()
{
    std::vector<int> rows(static_cast<std::size_t>(summaryRows_));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}
