#include "reports/chart/PageItemWriter.h"

PageItemWriter::PageItemWriter(PreparedReport& report, int page)
    : report_(report), page_(static_cast<std::size_t>(page))
{}

void PageItemWriter::text(const QRectF& rect, const QString& text, const PreparedStyle& style)
{
    add(ItemKind::Text, style, rect, text);
}

void PageItemWriter::line(QPointF from, QPointF to, const ReportFrame& pen)
{
    PreparedStyle style;
    style.frame = pen;
    style.frame.sides = FrameAll;
    add(ItemKind::Line, style, QRectF(from, to));
}

void PageItemWriter::box(const QRectF& rect, const QColor& fill, const ReportFrame& outline)
{
    PreparedStyle style;
    style.fill = fill;
    style.frame = outline;
    style.frame.sides = FrameAll;
    style.shape = ShapeKind::Rectangle;
    add(ItemKind::Shape, style, rect);
}

int PageItemWriter::styleIndex(const PreparedStyle& style)
{
    for (std::size_t i = 0; i < report_.styles.size(); ++i)
        if (report_.styles[i] == style)
            return static_cast<int>(i);
    report_.styles.push_back(style);
    return static_cast<int>(report_.styles.size() - 1);
}

void PageItemWriter::add(ItemKind kind, const PreparedStyle& style, const QRectF& rect, const QString& text)
{
    const int index = styleIndex(style);
    page().items.push_back(PreparedItem{kind, index, rect, text});
}

PreparedStyle TextStyle(double pixelSize, HAlign hAlign, bool bold)
{
    PreparedStyle style;
    style.font.pixelSize = pixelSize;
    style.font.bold = bold;
    style.hAlign = hAlign;
    style.vAlign = VAlign::Center;
    style.wordWrap = false;
    return style;
}
