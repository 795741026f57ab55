// 60,000 animals exported as the summary workbook and as the text file.
#include "core/session/HalvarnSession.h"
#include "export/ExportCommands.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

#include <numeric>
#include <time.h>

using namespace Qt::StringLiterals;

namespace {
class SilentHost : public OperationHost {
public:
    std::vector<int> rows;
    void statusModeChanged(bool, bool) override {}
    void statusTextChanged(StatusPanel, const QString&) override {}
    void progressChanged(int, int, int) override {}
    void memoAppended(Memo, const QString&) override {}
    void memoCleared(Memo) override {}
    void showMessage(const QString&, const QString&, MessageIcon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
    std::optional<QString> askHerd() override { return u"ALL"_s; }
    std::vector<int> summaryRowsInDisplayOrder() override { return rows; }
    void openWithDesktop(const QString&) override {}
};

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

qint64 CpuNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

// Wall time, and the CPU time of this process: on a shared machine the second
// shows the work itself, whatever else the cores are doing meanwhile.
template <class F> QString Seconds(F&& run)
{
    QElapsedTimer timer;
    timer.start();
    const qint64 cpuStart = CpuNanoseconds();
    run();
    const double cpu = static_cast<double>(CpuNanoseconds() - cpuStart) / 1e9;
    return QString::number(static_cast<double>(timer.nsecsElapsed()) / 1e9, 'f', 3) + u" s (CPU "_s +
           QString::number(cpu, 'f', 3) + u" s)"_s;
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    constexpr int Animals = 60000;
    QTemporaryDir folder;
    SilentHost host;
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
    out << "Export XLS: " << Seconds([&] { exports.exportSummaryXls(); }) << ", target < 1 s" << Qt::endl;
    out << "Export CSV: " << Seconds([&] { exports.exportSummaryCsv(); }) << ", target < 1 s" << Qt::endl;
    // Both files must really be there: a failed export would otherwise look fast.
    const int written = QDir(session.dataFolder().exportFolder()).entryList(QDir::Files).size();
    out << "files written: " << written << " of 2" << Qt::endl;
    return written == 2 ? 0 : 1;
}
