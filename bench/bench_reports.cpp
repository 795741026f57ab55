// The animals print of 20,000 animals in 10 herds with the choice "ALL": the
// overall section and every herd, about 40,000 rows, prepared and written as PDF.
#include "HerdData.h"
#include "reports/ReportPdf.h"

#include <QGuiApplication>
#include <QTextStream>

namespace {
constexpr int Herds = 10;
constexpr int AnimalsPerHerd = 2000;
} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    PrintableHerds herds(Herds, AnimalsPerHerd);
    std::optional<PreparedReport> report;
    const Timing prepared = Measure([&] { report = herds.prints.prepareHerds(HerdPrint::Animals, u"ALL"_s); });
    if (!report)
        return 1;
    QByteArray pdf;
    const Timing written = Measure([&] { pdf = RenderPdf(*report, {}); });

    QTextStream out(stdout);
    const int pages = report->pageCount();
    out << "animals: " << Herds * AnimalsPerHerd << " in " << Herds
        << " herds, rows printed: " << 2 * Herds * AnimalsPerHerd << ", pages: " << pages << Qt::endl;
    out << "prepare pages: " << prepared.text() << ", " << QString::number(prepared.wall * 1000 / pages, 'f', 2)
        << " ms per page, target <= 2 s" << Qt::endl;
    out << "write PDF: " << written.text() << ", " << QString::number(written.wall * 1000 / pages, 'f', 2)
        << " ms per page, " << pdf.size() / (1024 * 1024) << " MB, target <= 8 s" << Qt::endl;
    out << "peak memory: " << PeakMegabytes() << " MB, target <= 500 MB" << Qt::endl;
    return pdf.startsWith("%PDF") ? 0 : 1;
}
