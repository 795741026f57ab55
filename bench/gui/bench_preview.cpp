// The preview of the 20,000-animal "ALL" animals print: how long the first page
// takes to show once the pages are laid out, and how long a page turn takes
// over 100 turns spread through the report (targets 1 s and 50 ms).
#include "HerdData.h"
#include "gui/preview/PageView.h"
#include "gui/preview/TfpRapPrev_FR3.h"

#include <QApplication>
#include <QTextStream>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    PrintableHerds herds(10, 2000);
    std::optional<PreparedReport> report;
    const Timing layout = Measure([&] { report = herds.prints.prepareHerds(HerdPrint::Animals, u"ALL"_s); });
    if (!report)
        return 1;
    auto shared = std::make_shared<const PreparedReport>(std::move(*report));

    std::unique_ptr<TfpRapPrev_FR3> preview;
    const Timing firstPage = Measure([&] {
        preview = std::make_unique<TfpRapPrev_FR3>(shared, PreviewSettings{});
        preview->resize(1366, 768);
        preview->show();
        preview->pageView()->viewport()->grab();
    });
    constexpr int Turns = 100;
    const int pages = shared->pageCount();
    const Timing turns = Measure([&] {
        for (int turn = 1; turn <= Turns; ++turn) {
            preview->pageView()->goToPage(turn * 7 % pages);
            preview->pageView()->viewport()->grab();
        }
    });
    QTextStream out(stdout);
    out << "pages: " << pages << ", layout: " << layout.text() << Qt::endl;
    out << "first page shown after the layout: " << firstPage.text() << ", target <= 1 s" << Qt::endl;
    out << "page turn: " << QString::number(turns.wall * 1000 / Turns, 'f', 2) << " ms (" << Turns
        << " turns: " << turns.text() << "), target <= 50 ms" << Qt::endl;
    return 0;
}
