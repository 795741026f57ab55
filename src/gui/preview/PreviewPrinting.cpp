#include "gui/preview/PreviewPrinting.h"

#include "reports/PageRenderer.h"
#include "reports/ReportPdf.h"

#include <QPainter>
#include <QPrinter>

namespace {
QPageLayout::Orientation OrientationOf(const PreparedReport& report, int page)
{
    return PaperLayout(report.pages[static_cast<std::size_t>(page)]).orientation();
}

bool OrientationsDiffer(const PreparedReport& report, PageSpan pages)
{
    for (int page = pages.first + 1; page <= pages.last; ++page)
        if (OrientationOf(report, page) != OrientationOf(report, pages.first))
            return true;
    return false;
}
} // namespace

QPageLayout PaperLayout(const PreparedPage& page)
{
    const double width = page.paperMm.width(), height = page.paperMm.height();
    const QPageSize size(QSizeF(std::min(width, height), std::max(width, height)), QPageSize::Millimeter);
    return QPageLayout(size, width > height ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF());
}

void SetUpPrinter(QPrinter& printer, const PreparedReport& report)
{
    // The layout carries the full-page mode, so it is set first.
    printer.setPageLayout(PaperLayout(report.pages.empty() ? PreparedPage() : report.pages.front()));
    printer.setFullPage(true);
    printer.setPageMargins(QMarginsF(), QPageLayout::Millimeter);
}

PageSpan ChosenPages(const QPrinter& printer, int pageCount, int currentPage)
{
    if (pageCount == 0)
        return {};
    if (printer.printRange() == QPrinter::CurrentPage)
        return {currentPage, currentPage};
    if (printer.printRange() != QPrinter::PageRange)
        return {0, pageCount - 1};
    const int first = printer.fromPage() > 0 ? std::min(printer.fromPage(), pageCount) - 1 : 0;
    const int last = printer.toPage() > 0 ? std::min(printer.toPage(), pageCount) - 1 : pageCount - 1;
    return {first, last};
}

bool PrintPages(QPrinter& printer, const PreparedReport& report, PageSpan pages)
{
    const bool mixed = OrientationsDiffer(report, pages);
    if (mixed)
        printer.setPageOrientation(OrientationOf(report, pages.first));
    printer.setCreator(ProductIdentification());
    printer.setDocName(report.name);
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    for (int page = pages.first; page <= pages.last; ++page) {
        if (page > pages.first) {
            if (mixed)
                printer.setPageOrientation(OrientationOf(report, page));
            printer.newPage();
        }
        PaintPageOnDevice(painter, printer, report, page);
    }
    return painter.end();
}
