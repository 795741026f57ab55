#pragma once

#include "reports/PreparedReport.h"

// Adds drawing items to one page of a prepared report; items that look alike
// share one style of the report.
class PageItemWriter {
public:
    PageItemWriter(PreparedReport& report, int page);

    void text(const QRectF& rect, const QString& text, const PreparedStyle& style);
    void line(QPointF from, QPointF to, const ReportFrame& pen);
    void box(const QRectF& rect, const QColor& fill, const ReportFrame& outline);

    PreparedPage& page() { return report_.pages[page_]; }

private:
    int styleIndex(const PreparedStyle& style);
    void add(ItemKind kind, const PreparedStyle& style, const QRectF& rect, const QString& text = {});

    PreparedReport& report_;
    std::size_t page_;
};

// A style for texts of the given size in pixels (96 per inch), Arial as the templates use.
PreparedStyle TextStyle(double pixelSize, HAlign hAlign, bool bold = false);
