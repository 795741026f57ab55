#include "core/session/HalvarnSession.h"
#include "reports/print/PrintCommands.h"
#include "reports/print/TdmulmxDataBase_FR3.h"
#include "support/Files.h"
#include "support/HerdSections.h"
#include "support/RecordingHost.h"

#include <QTemporaryDir>
#include <QTest>

namespace {
// One overall section and three herd sections, each herd starting a new page.
QByteArray HerdTemplate()
{
    return R"(<?xml version="1.0" encoding="utf-8"?>
<TfrxReport><TfrxReportPage Name="Page1">
<TfrxReportTitle Name="Title" Top="0" Height="20"><TfrxMemoView Name="T" Width="300" Height="18" Text="TYTUŁ"/></TfrxReportTitle>
)" + HerdSections(u"NumerIdentyfikacyjny"_s, 3) +
           "</TfrxReportPage></TfrxReport>";
}

QByteArray FilteredTemplate()
{
    return R"(<TfrxReport><TfrxReportPage Name="Page1">
<TfrxMasterData Name="MasterData1" Top="0" Height="16" DataSet="frxDBDataset1">
<TfrxMemoView Name="R1" Width="300" Height="16" Text="R [frxDBDataset1.&quot;NumerIdentyfikacyjny&quot;]"/>
</TfrxMasterData></TfrxReportPage></TfrxReport>)";
}

void AddAnimal(Table& table, const QString& tag, const QString& herd)
{
    table.setReadOnly(false);
    table.append();
    table.setValue(u"NumerIdentyfikacyjny", tag);
    table.setValue(u"STADO", herd);
    table.setValue(u"Wiek", 7);
    table.post();
}
} // namespace

class PrintsTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    RecordingHost host_;
    std::unique_ptr<HalvarnSession> session_;
    TdmulmxDataBase_FR3 reports_;

    void writeTemplate(const QString& name, const QByteArray& xml)
    {
        WriteAll(session_->dataFolder().templatesFolder() + name, xml);
    }

    // Herds 001 and 003 in slots 1 and 3 with two and one animals; slot 2 holds
    // no herd, as when a holding in between was inactive.
    void loadHerds()
    {
        WorkingTables& tables = session_->tables();
        const std::pair<int, QString> herds[]{{1, u"001"_s}, {3, u"003"_s}};
        for (const auto& [slot, code] : herds) {
            THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
            herd.Code = code;
            herd.Visible = true;
            for (int i = 1; i <= (slot == 1 ? 2 : 1); ++i) {
                const QString tag = u"PL%1%2"_s.arg(code).arg(i);
                AddAnimal(*herd.AnimalsTable, tag, code);
                AddAnimal(tables.mdRZ00(), tag, code);
            }
        }
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(dir_.isValid());
        const DataFolder folder(dir_.path());
        QVERIFY(folder.prepare());
        host_ = RecordingHost();
        session_ = std::make_unique<HalvarnSession>(folder, host_);
        session_->ClearAllData();
        loadHerds();
        writeTemplate(PrintCommands::templateName(HerdPrint::Animals), HerdTemplate());
    }

    void herdChoice_data()
    {
        QTest::addColumn<QString>("herd");
        QTest::addColumn<QStringList>("pages"); // each page's texts after the title, joined by "|"
        QTest::newRow("ALL: overall, then every herd on its page, the empty slot skipped")
            << u"ALL"_s
            << QStringList{u"TYTUŁ|O PL0011|O PL0012|O PL0031"_s, u"Stado: 001|R PL0011|R PL0012"_s,
                           u"Stado: 003|R PL0031"_s};
        QTest::newRow("000: the overall section alone")
            << u"000"_s << QStringList{u"TYTUŁ|O PL0011|O PL0012|O PL0031"_s};
        QTest::newRow("a herd: its section through the first link, on the title's page")
            << u"003"_s << QStringList{u"TYTUŁ|Stado: 003|R PL0031"_s};
        QTest::newRow("a trailing blank matches no herd") << u"003 "_s << QStringList{u"TYTUŁ"_s};
        QTest::newRow("letter case matters") << u"all"_s << QStringList{u"TYTUŁ"_s};
    }

    void herdChoice()
    {
        QFETCH(QString, herd);
        QFETCH(QStringList, pages);
        PrintCommands prints(*session_, reports_);
        const std::optional<PreparedReport> report = prints.prepareHerds(HerdPrint::Animals, herd);
        QVERIFY(report);
        QStringList printed;
        for (int page = 0; page < report->pageCount(); ++page)
            printed.append(report->pageTexts(page).join(u'|'));
        QCOMPARE(printed, pages);
        QVERIFY(host_.messages.empty());
    }

    void linksAreResetBetweenPrints()
    {
        PrintCommands prints(*session_, reports_);
        QVERIFY(prints.prepareHerds(HerdPrint::Animals, u"ALL"_s));
        QCOMPARE(reports_.frxDBDataset(2).table, session_->tables().HerdSlots[3].AnimalsTable);
        QVERIFY(prints.prepareHerds(HerdPrint::Animals, u"000"_s));
        for (int n = 1; n <= TdmulmxDataBase_FR3::HerdLinkCount; ++n)
            QCOMPARE(reports_.frxDBDataset(n).table, &session_->tables().mdEmpty());
        QCOMPARE(reports_.frxDBDataset(30).table, &session_->tables().mdProducent());
        QVERIFY(!reports_.HerdLink(0) && !reports_.HerdLink(21));
        // The caption of an earlier print does not survive: the template is read again.
        QCOMPARE(reports_.frxReport.findObject(u"MV1"_s)->text, u"Stado"_s);
    }

    void missingTemplate()
    {
        PrintCommands prints(*session_, reports_);
        QVERIFY(!prints.prepareHerds(HerdPrint::Groups, u"ALL"_s));
        QCOMPARE(host_.messages.size(), std::size_t(1));
        QCOMPARE(host_.messages[0].caption, u"Bład..."_s);
        QCOMPARE(host_.messages[0].text,
                 u"Nie znaleziono szablonu: \"%1/SZABLONY/Grupy technologiczne.fr3\""_s.arg(dir_.path()));
        QCOMPARE(host_.messages[0].icon, MessageIcon::Error);
    }

    void damagedTemplate()
    {
        writeTemplate(PrintCommands::filteredTemplateName(), "<TfrxReport><TfrxReportPage");
        PrintCommands prints(*session_, reports_);
        QVERIFY(!prints.prepareFiltered());
        QCOMPARE(host_.messages.size(), std::size_t(1));
        QCOMPARE(host_.messages[0].caption, u"Błąd..."_s);
        QVERIFY(host_.messages[0].text.contains(PrintCommands::filteredTemplateName()));
    }

    void filteredPrintCopiesTheShownRowsInOrder_data()
    {
        QTest::addColumn<std::vector<int>>("shown");
        QTest::addColumn<QString>("texts");
        QTest::newRow("sorted and filtered") << std::vector<int>{2, 0} << u"R PL0031|R PL0011"_s;
        QTest::newRow("a filter that hides every row") << std::vector<int>{} << QString();
    }

    void filteredPrintCopiesTheShownRowsInOrder()
    {
        QFETCH(std::vector<int>, shown);
        QFETCH(QString, texts);
        writeTemplate(PrintCommands::filteredTemplateName(), FilteredTemplate());
        host_.summaryRows = shown;
        PrintCommands prints(*session_, reports_);
        const std::optional<PreparedReport> report = prints.prepareFiltered();
        QVERIFY(report);
        QCOMPARE(report->pageTexts(0).join(u'|'), texts);
        const Table& copied = session_->tables().mdRaport1();
        QCOMPARE(copied.recordCount(), int(shown.size()));
        if (!shown.empty()) {
            QCOMPARE(AsInteger(copied.at(0, copied.requireField(u"Wiek"))), 7);
            QCOMPARE(AsString(copied.at(1, copied.requireField(u"STADO"))), u"001"_s);
        }
    }
};

QTEST_MAIN(PrintsTest)
#include "test_prints.moc"
