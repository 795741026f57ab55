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
