#include "reports/PreparedReport.h"

QStringList PreparedReport::pageTexts(int page) const
{
    QStringList texts;
    if (page < 0 || page >= pageCount())
        return texts;
    for (const PreparedItem& item : pages[static_cast<std::size_t>(page)].items)
        if (item.kind == ItemKind::Text && !item.text.isEmpty())
            texts.append(item.text);
    return texts;
}

std::optional<TextHit> PreparedReport::find(const QString& text, TextHit after, Qt::CaseSensitivity cs) const
{
    if (text.isEmpty() || pages.empty())
        return std::nullopt;
    const auto matches = [&](int page, int item) {
        const PreparedItem& candidate = pages[static_cast<std::size_t>(page)].items[static_cast<std::size_t>(item)];
        return candidate.kind == ItemKind::Text && candidate.text.contains(text, cs);
    };
    const int start = std::clamp(after.page, 0, pageCount() - 1);
    for (int step = 0; step <= pageCount(); ++step) {
        const int page = (start + step) % pageCount();
        const int items = static_cast<int>(pages[static_cast<std::size_t>(page)].items.size());
        const int first = step == 0 ? after.item + 1 : 0;
        const int last = step == pageCount() ? std::min(after.item + 1, items) : items;
        for (int item = std::max(first, 0); item < last; ++item)
            if (matches(page, item))
                return TextHit{page, item};
    }
    return std::nullopt;
}
