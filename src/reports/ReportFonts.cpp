#include "reports/ReportFonts.h"

using namespace Qt::StringLiterals;

QString MappedFamily(const QString& templateFamily)
{
    static const std::pair<QString, QString> metricTwins[]{
        {u"Arial"_s, u"Liberation Sans"_s},
        {u"Helvetica"_s, u"Liberation Sans"_s},
        {u"Times New Roman"_s, u"Liberation Serif"_s},
        {u"Times"_s, u"Liberation Serif"_s},
        {u"Courier New"_s, u"Liberation Mono"_s},
        {u"Courier"_s, u"Liberation Mono"_s},
    };
    for (const auto& [windows, free] : metricTwins)
        if (templateFamily.compare(windows, Qt::CaseInsensitive) == 0)
            return free;
    return templateFamily;
}

QFont MappedFont(const ReportFont& font, double deviceDpi)
{
    QFont mapped(MappedFamily(font.family));
    mapped.setPointSizeF(font.pixelSize * 72.0 / deviceDpi);
    mapped.setBold(font.bold);
    mapped.setItalic(font.italic);
    mapped.setUnderline(font.underline);
    mapped.setStrikeOut(font.strikeOut);
    // Unhinted outlines keep widths proportional between the screen, the
    // printer and the PDF, so a text that fits in the preview fits everywhere.
    mapped.setHintingPreference(QFont::PreferNoHinting);
    mapped.setStyleStrategy(QFont::StyleStrategy(QFont::PreferOutline | QFont::PreferMatch));
    return mapped;
}
