// The animals print of 20,000 animals in 10 herds with the choice "ALL": the
// overall section and every herd, about 40,000 rows, prepared and written as PDF.
#include "BenchSupport.h"
#include "core/session/HalvarnSession.h"
#include "reports/ReportPdf.h"
#include "reports/ShippedTemplates.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>

namespace {
constexpr int Herds = 10;
constexpr int AnimalsPerHerd = 2000;

void AddAnimal(Table& table, int i, const QString& herd)
{
    static const QString where[]{u"Halvarn krów mamek, 24 > Wiek"_s, u"Cielęta , Wiek <= 6"_s,
                                 u"Jałówki od 6 do 19, 6 > Wiek <= 19"_s, u"Halvarn opasów, -"_s};
    table.append();
    table.setValue(u"NumerIdentyfikacyjny", u"PL%1"_s.arg(5000000000LL + i, 12, 10, QLatin1Char('0')));
    table.setValue(u"Plec", i % 3 ? u"Samica"_s : u"Samiec"_s);
    table.setValue(u"DataUrodzenia", QDate(2015, 1, 1).addDays(i % 3000));
    table.setValue(u"Wiek", i % 120);
    table.setValue(u"TypUzytkowy", u"Mięsny"_s);
    table.setValue(u"KierunekUzytkowania", u"Mięsny"_s);
    table.setValue(u"GdzieRozpatrzono", where[i % 4]);
    table.setValue(u"Rozpatrzono", u"D"_s);
    table.setValue(u"CzyMatka", i % 2);
    table.setValue(u"STADO", herd);
    table.post();
}

void Fill(WorkingTables& tables)
{
    for (int herd = 1; herd <= Herds; ++herd) {
        THerdSlot& slot = tables.HerdSlots[static_cast<std::size_t>(herd)];
        slot.Code = u"%1"_s.arg(herd, 3, 10, QLatin1Char('0'));
        slot.Visible = true;
        slot.AnimalsTable->setReadOnly(false);
        for (int i = 0; i < AnimalsPerHerd; ++i) {
            const int animal = herd * AnimalsPerHerd + i;
            AddAnimal(tables.mdRZ00(), animal, slot.Code);
            AddAnimal(*slot.AnimalsTable, animal, slot.Code);
        }
    }
}
} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir folder;
    const DataFolder data(folder.path());
    data.prepare();
    InstallShippedTemplates(data.templatesFolder());
    SilentHost host;
    HalvarnSession session(data, host);
    session.ClearAllData();
    Fill(session.tables());

    TdmulmxDataBase_FR3 reports;
    PrintCommands prints(session, reports);
    std::optional<PreparedReport> report;
    const Timing prepared = Measure([&] { report = prints.prepareHerds(HerdPrint::Animals, u"ALL"_s); });
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
