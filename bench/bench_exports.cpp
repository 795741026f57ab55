// 60,000 animals exported as the summary workbook and as the text file.
#include "BenchSupport.h"
#include "core/session/HalvarnSession.h"
#include "export/ExportCommands.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {
void Fill(Table& summary, int animals)
{
    const QString female = u"Samica"_s, meat = u"Mięsny"_s;
    const QString where = u"Halvarn krów mamek, -"_s;
    for (int i = 0; i < animals; ++i) {
        summary.append();
        summary.setValue(u"NumerIdentyfikacyjny", u"PL%1"_s.arg(5000000000LL + i, 12, 10, QLatin1Char('0')));
        summary.setValue(u"Plec", female);
        summary.setValue(u"DataUrodzenia", QDate(2020, 1, 1).addDays(i % 2000));
        summary.setValue(u"Wiek", i % 120);
        summary.setValue(u"TypUzytkowy", meat);
        summary.setValue(u"KierunekUzytkowania", meat);
        summary.setValue(u"GdzieRozpatrzono", where);
        summary.setValue(u"Rozpatrzono", u"D"_s);
        summary.setValue(u"CzyMatka", i % 2);
        summary.setValue(u"STADO", u"%1"_s.arg(i % 20 + 1, 3, 10, QLatin1Char('0')));
        summary.setValue(u"ZAZNACZONE", false);
        summary.setValue(u"Rasa", u"LM"_s);
        summary.setValue(u"NumerDzialalnosci", u"071234562-001"_s);
        summary.post();
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    constexpr int Animals = 60000;
    QTemporaryDir folder;
    BenchHost host;
    HalvarnSession session(DataFolder(folder.path()), host);
    DataFolder(folder.path()).prepare();
    session.ClearAllData();
    session.inputs.producerNumber = u"071234562"_s;
    session.referenceDate = QDate::currentDate();
    Fill(session.tables().mdRZ00(), Animals);
    host.rows.resize(Animals);
    std::iota(host.rows.rbegin(), host.rows.rend(), 0); // the grid sorted backwards
    ExportCommands exports(session);
    QTextStream out(stdout);
    out << "animals: " << Animals << Qt::endl;
    out << "Export XLS: " << Measure([&] { exports.exportSummaryXls(); }).text() << ", target < 1 s" << Qt::endl;
    out << "Export CSV: " << Measure([&] { exports.exportSummaryCsv(); }).text() << ", target < 1 s" << Qt::endl;
    // Both files must really be there: a failed export would otherwise look fast.
    const int written = QDir(session.dataFolder().exportFolder()).entryList(QDir::Files).size();
    out << "files written: " << written << " of 2" << Qt::endl;
    return written == 2 ? 0 : 1;
}
