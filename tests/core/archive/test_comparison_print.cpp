#include "ComparisonFixture.h"
#include "core/session/HalvarnSession.h"
#include "reports/print/ComparisonPrint.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"
#include "support/RecordingHost.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
// The template as the program ships it, put where the prints read templates.
void InstallTemplate(const DataFolder& folder)
{
    const QString name = ComparisonPrint::templateName();
    const QByteArray shipped = ReadAll(QStringLiteral(HALVARN_SOURCE_DIR "/templates/") + name);
    QVERIFY(!shipped.isEmpty());
    QVERIFY(QDir().mkpath(folder.templatesFolder()));
    WriteAll(folder.templatesFolder() + name, shipped);
}

// B holds `arrived` calves more than A, nothing else changed.
DownloadComparison Arrivals(int arrived)
{
    DownloadSnapshot a{{}, {}, {{26, u"Cielęta"_s, 0}}};
    a.download.id = 1;
    a.download.producer = u"071234562"_s;
    a.download.referenceDate = QDate(2026, 1, 1);
    DownloadSnapshot b = a;
    b.download.id = 2;
    b.download.referenceDate = QDate(2026, 2, 1);
    for (int i = 0; i < arrived; ++i)
        b.animals.push_back({u"PL%1"_s.arg(5'000'000'000 + i * 7, 12, 10, QLatin1Char('0')), u"001"_s, u"Samiec"_s,
                             QDate(2026, 1, 10), 1, u"Cielęta"_s});
    b.groups.front().count = arrived;
    return DownloadComparison(a, b);
}

QStringList AllTexts(const PreparedReport& report)
{
    QStringList texts;
    for (int page = 0; page < report.pageCount(); ++page)
        texts += report.pageTexts(page);
    return texts;
}
} // namespace

class TestComparisonPrint : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    RecordingHost host_;
    std::unique_ptr<HalvarnSession> session_;
    TdmulmxDataBase_FR3 reports_;

    std::optional<PreparedReport> print(const DownloadComparison& comparison)
    {
        const ComparisonPrint printed(comparison);
        return PrintCommands(*session_, reports_).run(printed.job(reports_));
    }

private Q_SLOTS:
    void init()
    {
        session_ = std::make_unique<HalvarnSession>(DataFolder(dir_.path()), host_);
        session_->ClearAllData();
        InstallTemplate(session_->dataFolder());
    }

    void headerNamesBothDownloads();
    void listsTheChangesAndTheGroups_data();
    void listsTheChangesAndTheGroups();
    void aLongListGoesOnOverPages();
};

void TestComparisonPrint::headerNamesBothDownloads()
{
    const std::optional<PreparedReport> report = print(SampleComparison());
    QVERIFY(report);
    const QStringList first = report->pageTexts(0);
    for (const QString& text :
         {u"Porównanie pobrań"_s, u"071234562"_s, u"Gospodarstwo Zielonka"_s, u"Pobranie A (starsze): nr 12"_s,
          u"01.09.2026"_s, u"02.09.2026 08:15"_s, u"Pobranie B (nowsze): nr 15"_s, u"01.11.2026"_s,
          u"20.11.2026 19:40"_s, u"Przybyło: 1, ubyło: 1, zmiana grupy: 1"_s, u"Strona 1 z 1"_s})
        QVERIFY2(first.contains(text), qPrintable(text + u" in "_s + first.join(u" | "_s)));
    QVERIFY(host_.messages.empty());
}

void TestComparisonPrint::listsTheChangesAndTheGroups_data()
{
    QTest::addColumn<int>("arrived");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("one calf arrived") << 1
                                      << QStringList{u"przybyło"_s, u"PL005000000000"_s, u"Razem zmian: 1"_s,
                                                     u"Cielęta"_s};
    QTest::newRow("nothing changed") << 0
                                     << QStringList{u"Zwierzęta: przybyło, ubyło, zmiana grupy"_s, u"Razem zmian: 0"_s,
                                                    u"Liczebność grup technologicznych"_s, u"Cielęta"_s};
}

void TestComparisonPrint::listsTheChangesAndTheGroups()
{
    QFETCH(int, arrived);
    QFETCH(QStringList, texts);
    const std::optional<PreparedReport> report = print(Arrivals(arrived));
    QVERIFY(report);
    const QStringList all = AllTexts(*report);
    for (const QString& text : texts)
        QVERIFY2(all.contains(text), qPrintable(text + u" in "_s + all.join(u" | "_s)));
}

// From the second page on, the page header says whose comparison it is.
void TestComparisonPrint::aLongListGoesOnOverPages()
{
    const std::optional<PreparedReport> report = print(Arrivals(120));
    QVERIFY(report);
    const int pages = report->pageCount();
    QVERIFY(pages >= 3);
    QVERIFY(report->pageTexts(pages - 1).contains(u"Strona %1 z %1"_s.arg(pages)));
    QVERIFY(report->pageTexts(1).contains(u"Porównanie pobrań"_s));
    QVERIFY(report->pageTexts(1).contains(u"Numer identyfikacyjny"_s));
    QVERIFY(AllTexts(*report).contains(u"PL%1"_s.arg(5'000'000'000 + 119 * 7, 12, 10, QLatin1Char('0'))));
}

QTEST_GUILESS_MAIN(TestComparisonPrint)
#include "test_comparison_print.moc"
