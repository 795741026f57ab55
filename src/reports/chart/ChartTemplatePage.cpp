#include "reports/chart/ChartTemplatePage.h"

using namespace Qt::StringLiterals;

namespace {
ReportPageSetup LandscapeA4(const ReportPageSetup& source)
{
    ReportPageSetup setup = source;
    setup.paperWidth = 297.0;
    setup.paperHeight = 210.0;
    setup.landscape = true;
    setup.paperSize = 9;
    return setup;
}

double PrintableWidth(const ReportPageSetup& setup)
{
    return (setup.paperWidth - setup.leftMargin - setup.rightMargin) * PixelsPerMm;
}

// The band's objects keep their heights and stretch across the wider page.
ReportBand Widened(ReportBand band, double factor)
{
    for (ReportObject& object : band.objects)
        object.rect =
            QRectF(object.rect.left() * factor, object.rect.top(), object.rect.width() * factor, object.rect.height());
    band.printOnFirstPage = true;
    band.printOnLastPage = true;
    return band;
}

const ReportPage* FirstVisiblePage(const ReportTemplate& report)
{
    for (const ReportPage& page : report.pages)
        if (page.visible)
            return &page;
    return nullptr;
}
} // namespace

ReportTemplate WithChartPage(ReportTemplate report)
{
    ReportPage chart;
    chart.name = u"StronaWykresu"_s;
    const ReportPage* first = FirstVisiblePage(report);
    chart.setup = LandscapeA4(first ? first->setup : ReportPageSetup{});
    if (first) {
        const double factor = PrintableWidth(chart.setup) / std::max(PrintableWidth(first->setup), 1.0);
        for (const ReportBand& band : first->bands)
            if (band.visible && (band.kind == BandKind::PageHeader || band.kind == BandKind::PageFooter))
                chart.bands.push_back(Widened(band, factor));
    }
    report.pages.push_back(std::move(chart));
    return report;
}
