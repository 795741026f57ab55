#include "gui/preview/PageLayout.h"

#include <algorithm>

double PageScaling::of(QSizeF templateSize) const
{
    if (box.isEmpty())
        return pixelsPerTemplatePx;
    const double fitted = std::min(box.width() / templateSize.width(), box.height() / templateSize.height());
    return std::clamp(fitted, smallest, largest);
}

QSizeF PageLayout::TemplateSize(const PreparedPage& page)
{
    return page.paperMm / 25.4 * 96.0;
}

void PageLayout::build(const PreparedReport& report, const PageScaling& scaling, int pagesPerRow, int viewWidth)
{
    std::vector<QSize> sizes;
    sizes.reserve(report.pages.size());
    scales_.clear();
    int widestRow = 0, rowWidth = 0;
    for (int page = 0; page < report.pageCount(); ++page) {
        const QSizeF paper = TemplateSize(report.pages[static_cast<std::size_t>(page)]);
        scales_.push_back(scaling.of(paper));
        const QSizeF size = paper * scales_.back();
        sizes.push_back(QSize(std::max(qRound(size.width()), 1), std::max(qRound(size.height()), 1)));
        rowWidth = (page % pagesPerRow == 0 ? 0 : rowWidth + Gap) + sizes.back().width();
        widestRow = std::max(widestRow, rowWidth);
    }
    const int contentWidth = std::max(viewWidth, widestRow + 2 * Gap);
    rows_.clear();
    rects_.assign(sizes.size(), QRect());
    int top = Gap;
    for (int first = 0; first < report.pageCount(); first += pagesPerRow)
        addRow(sizes, first, std::min(pagesPerRow, report.pageCount() - first), contentWidth, top);
    contentSize_ = QSize(contentWidth, top);
}

void PageLayout::addRow(const std::vector<QSize>& sizes, int firstPage, int pageCount, int contentWidth, int& top)
{
    int rowWidth = Gap * (pageCount - 1), rowHeight = 0;
    for (int page = firstPage; page < firstPage + pageCount; ++page) {
        rowWidth += sizes[static_cast<std::size_t>(page)].width();
        rowHeight = std::max(rowHeight, sizes[static_cast<std::size_t>(page)].height());
    }
    int left = (contentWidth - rowWidth) / 2;
    for (int page = firstPage; page < firstPage + pageCount; ++page) {
        const QSize size = sizes[static_cast<std::size_t>(page)];
        rects_[static_cast<std::size_t>(page)] = QRect(QPoint(left, top), size);
        left += size.width() + Gap;
    }
    rows_.push_back(Row{top, rowHeight, firstPage});
    top += rowHeight + Gap;
}

QRect PageLayout::pageRect(int page) const
{
    if (page < 0 || page >= pageCount())
        return {};
    return rects_[static_cast<std::size_t>(page)];
}

double PageLayout::pixelsPerTemplatePx(int page) const
{
    return page >= 0 && page < pageCount() ? scales_[static_cast<std::size_t>(page)] : 1.0;
}

int PageLayout::rowBelow(int y) const
{
    const auto row = std::partition_point(rows_.begin(), rows_.end(), [y](const Row& r) { return r.bottom() <= y; });
    return static_cast<int>(std::min(row - rows_.begin(), std::ssize(rows_) - 1));
}

int PageLayout::firstPageBelow(int y) const
{
    return rows_.empty() ? 0 : rows_[static_cast<std::size_t>(rowBelow(y))].firstPage;
}

int PageLayout::pageNear(QPoint point) const
{
    if (rows_.empty())
        return 0;
    const int row = rowBelow(point.y());
    const int end = row + 1 < std::ssize(rows_) ? rows_[static_cast<std::size_t>(row + 1)].firstPage : pageCount();
    int page = rows_[static_cast<std::size_t>(row)].firstPage;
    while (page + 1 < end && pageRect(page).right() + Gap / 2 < point.x())
        ++page;
    return page;
}

std::pair<int, int> PageLayout::pagesBetween(int top, int bottom) const
{
    if (rows_.empty())
        return {0, 0};
    const int first = rowBelow(top);
    const auto after =
        std::partition_point(rows_.begin() + first, rows_.end(), [bottom](const Row& r) { return r.top < bottom; });
    const int last = after == rows_.end() ? pageCount() : after->firstPage;
    return {rows_[static_cast<std::size_t>(first)].firstPage, last};
}
