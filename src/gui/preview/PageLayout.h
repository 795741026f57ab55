#pragma once

#include "reports/PreparedReport.h"

#include <QRect>

#include <vector>

// How large the pages are drawn: all at one scale, or each as large as fits a
// box, so a page on its side fits the view's width as the upright ones do.
struct PageScaling {
    double pixelsPerTemplatePx = 1.0; // when the box is empty
    QSizeF box;                       // screen pixels
    double smallest = 0.0;            // the limits of a fitted scale
    double largest = 1.0;

    double of(QSizeF templateSize) const;
};

// Where each page of a report lies in the page view's contents: the pages one
// below the other, or in rows of two, centred, with a gap around them. Built
// once per report, zoom and view width, so finding the pages in view is a
// binary search even in a report of thousands of pages.
class PageLayout {
public:
    static constexpr int Gap = 12;

    static QSizeF TemplateSize(const PreparedPage& page); // template pixels, 96 per inch

    void build(const PreparedReport& report, const PageScaling& scaling, int pagesPerRow, int viewWidth);

    int pageCount() const { return static_cast<int>(rects_.size()); }
    QRect pageRect(int page) const;
    double pixelsPerTemplatePx(int page) const; // 1 for a page that is not there
    QSize contentSize() const { return contentSize_; }

    // The first page of the first row that reaches below y (the last row when none does).
    int firstPageBelow(int y) const;
    // The page nearest to a point of the contents.
    int pageNear(QPoint point) const;
    // The pages whose rows meet the band top..bottom of the contents: [first, last).
    std::pair<int, int> pagesBetween(int top, int bottom) const;

private:
    struct Row {
        int top = 0;
        int height = 0;
        int firstPage = 0;
        int bottom() const { return top + height; }
    };

    int rowBelow(int y) const;
    void addRow(const std::vector<QSize>& sizes, int firstPage, int pageCount, int contentWidth, int& top);

    std::vector<Row> rows_;
    std::vector<QRect> rects_;
    std::vector<double> scales_;
    QSize contentSize_;
};
