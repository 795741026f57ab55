#include "core/session/HalvarnSession.h"
#include "reports/GroupCountsFixture.h"
#include "reports/TemplateReader.h"
#include "reports/chart/GroupsChartData.h"
#include "reports/chart/GroupsChartPage.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"
#include "support/HerdSections.h"
#include "support/RecordingHost.h"

#include <QTemporaryDir>
#include <QTest>

namespace {
using Counts = std::vector<GroupCount>;
using Values = QList<QList<int>>;

// Two herds: the overall rows and each herd's, counting in both columns.
Counts TwoHerds()
{
    return {{0, GroupId::SucklerMothers, 0, 2},
            {0, GroupId::Heifers6To19, 3, 0},
            {0, GroupId::Cows, 5, 0},
            {1, GroupId::SucklerMothers, 0, 2},
            {1, GroupId::Heifers6To19, 3, 0},
            {1, GroupId::Cows, 3, 0},
            {2, GroupId::Cows, 2, 0}};
}

QList<int> Ids(const GroupsChartData& data)
{
    QList<int> ids;
    for (const GroupsChartCategory& category : data.categories)
        ids.append(category.id);
    return ids;
}

QStringList Names(const GroupsChartData& data)
{
    QStringList names;
    for (const GroupsChartSeries& series : data.series)
        names.append(series.name);
    return names;
}

Values ValuesOf(const GroupsChartData& data)
{
    Values values;
    for (const GroupsChartSeries& series : data.series)
        values.append(QList<int>(series.values.begin(), series.values.end()));
    return values;
}

QStringList Totals(const GroupsChartData& data)
{
    QStringList totals;
    for (std::size_t category = 0; category < data.categories.size(); ++category)
        totals.append(data.totalText(category));
    return totals;
}

// The overall section, a page header and a footer that counts the pages, and
// two herd sections, each on its own page.
QByteArray GroupsTemplate()
{
    return R"(<?xml version="1.0" encoding="utf-8"?>
<TfrxReport><TfrxReportPage Name="Page1" PaperWidth="210" PaperHeight="297" LeftMargin="10" RightMargin="10" TopMargin="10" BottomMargin="10">
<TfrxPageHeader Name="PageHeader1" Top="0" Height="20"><TfrxMemoView Name="H" Width="718" Height="18" Text="NAGŁÓWEK"/></TfrxPageHeader>
)" + HerdSections(u"GT"_s, 2) +
           "<TfrxPageFooter Name=\"PageFooter1\" Top=\"400\" Height=\"20\">"
           "<TfrxMemoView Name=\"S\" Left=\"518\" Width=\"200\" Height=\"18\" HAlign=\"haRight\""
           " Text=\"Strona [Page#] z [TotalPages#]\"/></TfrxPageFooter></TfrxReportPage></TfrxReport>";
}
} // namespace

class GroupsChartTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    RecordingHost host_;
    std::unique_ptr<HalvarnSession> session_;
    TdmulmxDataBase_FR3 reports_;

    // A session with herds 001 and 002 shown and the groups template in place.
    void startSession()
    {
        QVERIFY(dir_.isValid());
        const DataFolder folder(dir_.path());
        QVERIFY(folder.prepare());
        host_ = RecordingHost();
        session_ = std::make_unique<HalvarnSession>(folder, host_);
        session_->ClearAllData();
        ShowHerds(session_->tables(), {1, 2});
        WriteAll(session_->dataFolder().templatesFolder() + PrintCommands::templateName(HerdPrint::Groups),
                 GroupsTemplate());
    }

private Q_SLOTS:
    void chartData_data()
    {
        QTest::addColumn<Counts>("counts");
        QTest::addColumn<QList<int>>("shown");
        QTest::addColumn<QList<int>>("ids");
        QTest::addColumn<QStringList>("labels");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<Values>("values");
        QTest::addColumn<QStringList>("totals");
        QTest::addColumn<bool>("sumsMatch");

        QTest::newRow("two herds, counts in Ilosc and IloscPom")
            << TwoHerds() << QList<int>{1, 2}
            << QList<int>{GroupId::SucklerMothers, GroupId::Heifers6To19, GroupId::Cows}
            << QStringList{u"- mamki"_s, u"Jałówki od 6 do 19"_s, u"Krowy"_s}
            << QStringList{u"Stado 001"_s, u"Stado 002"_s} << Values{{2, 3, 3}, {0, 0, 2}}
            << QStringList{u"2"_s, u"3"_s, u"5"_s} << true;
        QTest::newRow("a herd shown without animals has its series of zeros")
            << Counts{{0, GroupId::Cows, 4, 0}, {1, GroupId::Cows, 4, 0}} << QList<int>{1, 2, 3}
            << QList<int>{GroupId::Cows} << QStringList{u"Krowy"_s}
            << QStringList{u"Stado 001"_s, u"Stado 002"_s, u"Stado 003"_s} << Values{{4}, {0}, {0}}
            << QStringList{u"4"_s} << true;
        QTest::newRow("a herd not shown is left out, the herd values kept as they are")
            << Counts{{0, GroupId::Cows, 5, 0}, {1, GroupId::Cows, 3, 0}, {2, GroupId::Cows, 2, 0}} << QList<int>{1}
            << QList<int>{GroupId::Cows} << QStringList{u"Krowy"_s} << QStringList{u"Stado 001"_s} << Values{{3}}
            << QStringList{u"3 (Ogółem: 5)"_s} << false;
        QTest::newRow("alike captions are told apart by their block")
            << Counts{{0, GroupId::FatteningTo150, 0, 1},
                      {0, GroupId::BeefTo150, 0, 2},
                      {1, GroupId::FatteningTo150, 0, 1},
                      {1, GroupId::BeefTo150, 0, 2}}
            << QList<int>{1} << QList<int>{GroupId::FatteningTo150, GroupId::BeefTo150}
            << QStringList{u"- waga <= 150 kg (Halvarn opasów)"_s, u"- waga <= 150 kg (Bydło opasowe do 300 kg)"_s}
            << QStringList{u"Stado 001"_s} << Values{{1, 2}} << QStringList{u"1"_s, u"2"_s} << true;
        QTest::newRow("nothing counted: empty") << Counts{} << QList<int>{1, 2} << QList<int>{} << QStringList{}
                                                << QStringList{} << Values{} << QStringList{} << true;
        QTest::newRow("counted, but no herd shown: empty")
            << Counts{{0, GroupId::Cows, 4, 0}} << QList<int>{} << QList<int>{} << QStringList{} << QStringList{}
            << Values{} << QStringList{} << true;
    }

    void chartData()
    {
        QFETCH(Counts, counts);
        QFETCH(QList<int>, shown);
        QFETCH(QList<int>, ids);
        QFETCH(bool, sumsMatch);
        WorkingTables tables;
        FillGroups(tables, counts);
        ShowHerds(tables, shown);
        const GroupsChartData data = BuildGroupsChartData(tables);
        QCOMPARE(Ids(data), ids);
        QTEST(data.categoryLabels(), "labels");
        QTEST(Names(data), "names");
        QTEST(ValuesOf(data), "values");
        QTEST(Totals(data), "totals");
        QCOMPARE(data.isEmpty(), ids.isEmpty());
        QCOMPARE(data.herdSumsMatch(), sumsMatch);
        for (std::size_t i = 0; i < data.categories.size(); ++i) {
            QCOMPARE(data.categories[i].overall, OverallCount(tables, data.categories[i].id));
            if (sumsMatch)
                QCOMPARE(data.herdSum(i), OverallCount(tables, data.categories[i].id));
        }
    }

    void valueAxis_data()
    {
        QTest::addColumn<int>("largest");
        QTest::addColumn<int>("step");
        QTest::addColumn<int>("maximum");
        QTest::newRow("nothing") << 0 << 1 << 1;
        QTest::newRow("a few, one by one") << 6 << 1 << 6;
        QTest::newRow("past six ones: twos") << 7 << 2 << 8;
        QTest::newRow("past six twos: fives") << 13 << 5 << 15;
        QTest::newRow("past six fives: tens") << 31 << 10 << 40;
        QTest::newRow("hundreds") << 250 << 50 << 250;
    }

    void valueAxis()
    {
        QFETCH(int, largest);
        QFETCH(int, step);
        QFETCH(int, maximum);
        QCOMPARE(ScaleFor(largest), (ValueAxisScale{step, maximum}));
    }

    void chartPage()
    {
        WorkingTables tables;
        FillGroups(tables, TwoHerds());
        ShowHerds(tables, {1, 2});
        PreparedReport report;
        report.pages.emplace_back();
        QVERIFY(AppendGroupsChartPage(report, BuildGroupsChartData(tables)));
        QCOMPARE(report.pageCount(), 2);
        const PreparedPage& page = report.pages[1];
        QVERIFY(page.landscape);
        QCOMPARE(page.paperMm, QSizeF(297.0, 210.0));
        const QStringList texts = report.pageTexts(1);
        for (const QString& text : {u"Wykres grup technologicznych"_s, u"Stado 001"_s, u"Stado 002"_s, u"- mamki"_s,
                                    u"Jałówki od 6 do 19"_s, u"Krowy"_s, u"5"_s, u"Liczba zwierząt"_s})
            QVERIFY2(texts.contains(text), qPrintable(text));
        const QRectF paper(QPointF(0, 0), page.paperMm * PixelsPerMm);
        int shapes = 0;
        for (const PreparedItem& item : page.items) {
            QVERIFY(paper.contains(item.rect.topLeft()) && paper.contains(item.rect.bottomRight()));
            QVERIFY(item.style >= 0 && item.style < int(report.styles.size()));
            shapes += item.kind == ItemKind::Shape ? 1 : 0;
        }
        QCOMPARE(shapes, 4 + 2); // the nonzero segments, and a legend mark per herd
    }

    void noPageWithoutCounts()
    {
        WorkingTables tables;
        FillGroups(tables, {});
        ShowHerds(tables, {1, 2});
        PreparedReport report;
        QVERIFY(!AppendGroupsChartPage(report, BuildGroupsChartData(tables)));
        QCOMPARE(report.pageCount(), 0);
    }

    void groupsPrint_data()
    {
        QTest::addColumn<QString>("herd");
        QTest::addColumn<bool>("counted");
        QTest::addColumn<bool>("charted");
        QTest::newRow("ALL: the chart last") << u"ALL"_s << true << true;
        QTest::newRow("000: the chart after the overall section") << u"000"_s << true << true;
        QTest::newRow("one herd: no chart") << u"001"_s << true << false;
        QTest::newRow("ALL, nothing counted: no chart") << u"ALL"_s << false << false;
    }

    void groupsPrint()
    {
        QFETCH(QString, herd);
        QFETCH(bool, counted);
        QFETCH(bool, charted);
        startSession();
        FillGroups(session_->tables(), counted ? TwoHerds() : Counts{}, false);
        PrintCommands prints(*session_, reports_);
        const std::optional<PreparedReport> report = prints.prepareHerds(HerdPrint::Groups, herd);
        QVERIFY(report);
        QVERIFY(host_.messages.empty());
        const int pages = report->pageCount();
        for (int page = 0; page < pages; ++page) {
            QVERIFY2(report->pageTexts(page).contains(u"Strona %1 z %2"_s.arg(page + 1).arg(pages)),
                     qPrintable(report->pageTexts(page).join(u'|')));
            QCOMPARE(report->pages[std::size_t(page)].landscape, charted && page == pages - 1);
        }
        const QStringList last = report->pageTexts(pages - 1);
        QCOMPARE(last.contains(GroupsChartTitle()), charted);
        if (charted)
            for (const QString& text : {u"NAGŁÓWEK"_s, u"Stado 001"_s, u"Stado 002"_s, u"2"_s, u"3"_s, u"5"_s})
                QVERIFY2(last.contains(text), qPrintable(text));
    }

    // The template editor's preview prints the same pages as the print itself.
    void runWithAddsTheSameChartPage()
    {
        startSession();
        FillGroups(session_->tables(), TwoHerds(), false);
        PrintCommands prints(*session_, reports_);
        const std::optional<PreparedReport> printed = prints.prepareHerds(HerdPrint::Groups, u"ALL"_s);
        QVERIFY(printed);
        const ReportTemplate loaded = ReadTemplate(prints.templatePath(PrintCommands::templateName(HerdPrint::Groups)));
        const PreparedReport previewed = prints.runWith(prints.herds(HerdPrint::Groups, u"ALL"_s), loaded);
        QCOMPARE(previewed.pageCount(), printed->pageCount());
        for (int page = 0; page < printed->pageCount(); ++page)
            QCOMPARE(previewed.pageTexts(page), printed->pageTexts(page));
        // A print after it that is no groups print gets no chart.
        const PreparedReport animals = prints.runWith(prints.herds(HerdPrint::Animals, u"ALL"_s), loaded);
        QVERIFY(!animals.pageTexts(animals.pageCount() - 1).contains(GroupsChartTitle()));
    }
};

QTEST_MAIN(GroupsChartTest)
#include "test_groups_chart.moc"
