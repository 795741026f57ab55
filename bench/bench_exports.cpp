// 60,000 animals exported as the summary workbook and as the text file.
#include "app/session/HalvarnSession.h"
#include "export/ExportCommands.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

#include <numeric>

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
    std::optional<QString> askHerd() override { return QStringLiteral("ALL"); }
    std::vector<int> summaryRowsInDisplayOrder() override { return rows; }
    void openWithDesktop(const QString&) override {}
};

void Fill(Table& summary, int animals)
{
    const QString female = QStringLiteral("Samica"), meat = QString::fromUtf8("Mięsny");
    const QString where = QString::fromUtf8("Halvarn krów mamek, -");
    for (int i = 0; i < animals; ++i) {
        summary.append();
        summary.setValue(u"NumerIdentyfikacyjny", QStringLiteral("PL%1").arg(5000000000LL + i, 12, 10, QLatin1Char('0')));
        summary.setValue(u"Plec", female);
        summary.setValue(u"DataUrodzenia", QDate(2020, 1, 1).addDays(i % 2000));
        summary.setValue(u"Wiek", i % 120);
        summary.setValue(u"TypUzytkowy", meat);
        summary.setValue(u"KierunekUzytkowania", meat);
        summary.setValue(u"GdzieRozpatrzono", where);
        summary.setValue(u"Rozpatrzono", QStringLiteral("D"));
        summary.setValue(u"CzyMatka", i % 2);
        summary.setValue(u"STADO", QStringLiteral("%1").arg(i % 20 + 1, 3, 10, QLatin1Char('0')));
        summary.setValue(u"ZAZNACZONE", false);
        summary.setValue(u"Rasa", QStringLiteral("LM"));
        summary.setValue(u"NumerDzialalnosci", QStringLiteral("071234562-001"));
        summary.post();
    }
}

template <class F> double Seconds(F&& run)
{
    QElapsedTimer timer;
    timer.start();
    run();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
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
    session.inputs.producerNumber = QStringLiteral("071234562");
    session.referenceDate = QDate::currentDate();
    Fill(session.tables().mdRZ00(), Animals);
    host.rows.resize(Animals);
    std::iota(host.rows.rbegin(), host.rows.rend(), 0); // the grid sorted backwards
    ExportCommands exports(session);
    QTextStream out(stdout);
    out << "animals: " << Animals << Qt::endl;
    out << "Export XLS: " << QString::number(Seconds([&] { exports.exportSummaryXls(); }), 'f', 3)
        << " s (target < 1 s)" << Qt::endl;
    out << "Export CSV: " << QString::number(Seconds([&] { exports.exportSummaryCsv(); }), 'f', 3)
        << " s (target < 1 s)" << Qt::endl;
    return 0;
}
