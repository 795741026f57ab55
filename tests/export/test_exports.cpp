#include "analysis/DeclaredLimits.h"
#include "core/session/HalvarnSession.h"
#include "export/ExportCommands.h"
#include "export/XlsReader.h"
#include "framework/IniFile.h"
#include "support/RecordingHost.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
struct Animal {
    const char* number;
    int slot;
    int mother;
    const char* where;
};

// Three herds in slots 1 and 3 (slot 2 empty), animals written to mdRZ00 and their herd.
struct Farm {
    QTemporaryDir folder;
    RecordingHost host;
    HalvarnSession session{DataFolder(folder.path()), host};

    explicit Farm(const std::vector<Animal>& animals)
    {
        DataFolder(folder.path()).prepare();
        session.ClearAllData();
        session.inputs.producerNumber = u"071234562"_s;
        session.referenceDate = QDate(2026, 11, 1);
        WorkingTables& tables = session.tables();
        for (int slot : {1, 3}) {
            tables.HerdSlots[static_cast<std::size_t>(slot)].Code = u"00%1"_s.arg(slot);
            tables.HerdSlots[static_cast<std::size_t>(slot)].Visible = true;
        }
        for (const Animal& a : animals)
            for (Table* table : {&tables.mdRZ00(), &tables.mdRZ(a.slot)}) {
                table->setReadOnly(false);
                table->append();
                table->setValue(u"NumerIdentyfikacyjny", QLatin1String(a.number));
                table->setValue(u"Plec", u"Samica"_s);
                table->setValue(u"DataUrodzenia", QDate(2020, 3, 10));
                table->setValue(u"Wiek", 80);
                table->setValue(u"GdzieRozpatrzono", QString::fromUtf8(a.where));
                table->setValue(u"CzyMatka", a.mother);
                table->setValue(u"STADO", u"00%1"_s.arg(a.slot));
                if (table == &tables.mdRZ00()) {
                    table->setValue(u"ZAZNACZONE", a.mother == 1);
                    table->setValue(u"Rasa", u"HO"_s);
                }
                table->post();
                tables.restoreReadOnly(*table);
            }
        Table& groups = tables.mdGT00();
        groups.setReadOnly(false);
        groups.first();
        groups.edit();
        groups.setValue(u"Ilosc", 5);
        groups.post();
        tables.restoreReadOnly(groups);
    }

    QString exported(const char* pattern) const
    {
        const QDir dir(session.dataFolder().exportFolder());
        const QRegularExpression re(QString::fromUtf8(pattern));
        for (const QString& name : dir.entryList(QDir::Files))
            if (re.match(name).hasMatch())
                return dir.filePath(name);
        return {};
    }
};

const std::vector<Animal> ThreeCows{
    {"PL001", 1, 1, "Krowy, 24 > Wiek"}, {"PL002", 1, 0, "Krowy, 24 > Wiek"}, {"PL003", 1, 1, "Krowy, 24 > Wiek"}};
} // namespace

class TestExports : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void summaryWorkbookFollowsTheGridRows();
    void herdAnimalsSumTheMothersAsTheyAlwaysHave_data();
    void herdAnimalsSumTheMothersAsTheyAlwaysHave();
    void herdChoiceDecidesTheSheets_data();
    void herdChoiceDecidesTheSheets();
    void groupsWorkbookHasNoTimeAndSumsIlosc();
    void csvFileMatchesByteForByte();
    void failuresAreShownAndLeaveNoFile();
    void sheetsTooLongForTheFormatAreRefusedBeforeWriting_data();
    void sheetsTooLongForTheFormatAreRefusedBeforeWriting();
};

void TestExports::summaryWorkbookFollowsTheGridRows()
{
    Farm farm(ThreeCows);
    farm.host.summaryRows = {2, 0, 1};
    farm.host.answerYes = false;
    ExportCommands(farm.session).exportSummaryXls();
    const QString path = farm.exported("^Zwierzęta FILTROWANE-071234562 01\\.11\\.2026 \\d\\d_\\d\\d_\\d\\d\\.XLS$");
    QVERIFY2(!path.isEmpty(), qPrintable(QDir(farm.session.dataFolder().exportFolder()).entryList().join(u',')));
    QCOMPARE(farm.host.messageTexts(), QStringList{u"Zapisano do: "_s + QDir::toNativeSeparators(path)});
    QCOMPARE(farm.host.questions, QStringList{u"Czy otworzyć stworzony plik?"_s});
    const QJsonObject book = ReadWorkbook(path);
    QCOMPARE(SheetNames(book), QStringList{u"Ogółem"_s});
    const QStringList cells = SheetCells(book, 0);
    QCOMPARE(cells.mid(0, 11).join(u'|'),
             u"1,1:text:Zaznaczone|1,2:text:Stado|1,3:text:NumerIdentyfikacyjny|1,4:text:DataUrodzenia|1,5:text:Wiek|"
             u"1,6:text:TypUzytkowy|1,7:text:KierunekUzytkowania|1,8:text:Rozpatrzono|1,9:text:GdzieRozpatrzono|"
             u"1,10:text:CzyMatka|1,11:text:Płeć"_s);
    QCOMPARE(cells.mid(11, 8).join(u'|'),
             u"2,1:bool:true|2,2:text:001|2,3:text:PL003|2,4:date:2020-03-10|2,5:number:80|"
             u"2,9:text:Krowy, 24 > Wiek|2,10:number:1|2,11:text:Samica"_s);
    QVERIFY(cells.contains(u"3,3:text:PL001"_s) && cells.contains(u"4,3:text:PL002"_s));
    QCOMPARE(cells.mid(cells.size() - 3).join(u'|'), u"5,1:text:Ilość:|5,4:number:3|5,10:number:2"_s);
}

void TestExports::herdAnimalsSumTheMothersAsTheyAlwaysHave_data()
{
    QTest::addColumn<QList<int>>("mothers");
    QTest::addColumn<int>("sum");
    QTest::newRow("1, 0, 1") << QList<int>{1, 0, 1} << 2;
    QTest::newRow("1, 1, 0") << QList<int>{1, 1, 0} << 1;
    QTest::newRow("empty herd") << QList<int>{} << 0;
}

// The first record is never added and the last one twice.
void TestExports::herdAnimalsSumTheMothersAsTheyAlwaysHave()
{
    QFETCH(QList<int>, mothers);
    QFETCH(int, sum);
    const char* numbers[] = {"PL1", "PL2", "PL3"};
    std::vector<Animal> animals;
    for (qsizetype i = 0; i < mothers.size(); ++i)
        animals.push_back({numbers[i], 1, mothers[i], "x"});
    Farm farm(animals);
    QString path;
    QVERIFY(ExportCommands(farm.session).writeHerdAnimals(u"001"_s, path));
    const QJsonObject book = ReadWorkbook(path);
    QCOMPARE(SheetNames(book), QStringList{u"001"_s});
    const QStringList cells = SheetCells(book, 0);
    const int closing = static_cast<int>(mothers.size()) + 2;
    QCOMPARE(cells.mid(cells.size() - 3).join(u'|'),
             u"%1,1:text:Ilość:|%1,2:number:%2|%1,8:number:%3"_s.arg(closing).arg(mothers.size()).arg(sum));
    if (!mothers.isEmpty()) {
        QVERIFY(cells.contains(u"2,2:text:10.03.2020"_s)); // the date as its display text
        QVERIFY(cells.contains(u"1,9:text:Płeć"_s));
    }
}

void TestExports::herdChoiceDecidesTheSheets_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QStringList>("sheets");
    QTest::newRow("all, with a gap between herds") << u"ALL"_s << QStringList{u"Ogółem"_s, u"001"_s, u"003"_s};
    QTest::newRow("summary only") << u"000"_s << QStringList{u"Ogółem"_s};
    QTest::newRow("one herd") << u"003"_s << QStringList{u"003"_s};
    QTest::newRow("no such herd") << u"007"_s << QStringList{u"Arkusz1"_s};
}

void TestExports::herdChoiceDecidesTheSheets()
{
    QFETCH(QString, choice);
    QFETCH(QStringList, sheets);
    Farm farm({{"PL001", 1, 1, "x"}, {"PL301", 3, 0, "y"}});
    farm.host.herdChoice = choice;
    ExportCommands(farm.session).exportHerdAnimals();
    const QString path = farm.exported("^Zwierzęta-071234562 01\\.11\\.2026 \\d\\d_\\d\\d_\\d\\d\\.XLS$");
    QCOMPARE(SheetNames(ReadWorkbook(path)), sheets);
}

void TestExports::groupsWorkbookHasNoTimeAndSumsIlosc()
{
    Farm farm(ThreeCows);
    farm.host.herdChoice = u"000"_s;
    DeclaredLimits limits;
    limits.fill(9);
    ApplyDeclaredLimits(farm.session.tables().mdGT00(), limits);
    ExportCommands exports(farm.session);
    exports.exportHerdGroups();
    exports.exportHerdGroups(); // the same name: the second replaces the first
    const QString path = farm.exported("^Grupy-071234562 01\\.11\\.2026\\.XLS$");
    QVERIFY(!path.isEmpty());
    QCOMPARE(QDir(farm.session.dataFolder().exportFolder()).entryList(QDir::Files).size(), 1);
    const QStringList cells = SheetCells(ReadWorkbook(path), 0);
    QCOMPARE(cells.mid(0, 5).join(u'|'), u"1,1:text:Grupa technologiczna|1,2:text:ZakresWieku|1,3:text:Ilosc|"
                                         u"1,4:text:Inf. dod.|1,5:text:Limit"_s);
    QCOMPARE(cells.mid(5, 3).join(u'|'), u"2,1:text:Halvarn krów mamek|2,2:text:-|2,3:number:5"_s);
    QVERIFY(cells.contains(u"3,5:number:9"_s)); // "  - mamki", limited by the declared suckler cows
    QCOMPARE(cells.mid(cells.size() - 2).join(u'|'), u"42,2:text:Suma:|42,3:number:5"_s);
    farm.host.herdChoice = QString(); // cancelled: nothing written, nothing said
    const auto said = farm.host.messages.size();
    exports.exportHerdAnimals();
    QCOMPARE(farm.host.messages.size(), said);
}

void TestExports::csvFileMatchesByteForByte()
{
    Farm farm({{"PL001", 1, 1, "Krowy; \"mleczne\""}, {"PL002", 3, 0, "Byki"}});
    const QString folder = farm.folder.filePath(u"csv"_s);
    QDir().mkpath(folder);
    IniFile(farm.session.dataFolder().settingsFile()).writeString(u"PATHS"_s, u"CSV"_s, folder);
    farm.host.summaryRows = {1, 0};
    ExportCommands(farm.session).exportSummaryCsv();
    const QStringList written = QDir(folder).entryList(QDir::Files);
    QCOMPARE(written.size(), 1);
    QVERIFY(QRegularExpression(u"^Zwierzęta-071234562 01\\.11\\.2026 \\d\\d_\\d\\d_\\d\\d\\.CSV$"_s)
                .match(written[0])
                .hasMatch());
    QFile file(QDir(folder).filePath(written[0]));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QFile expected(QStringLiteral(HALVARN_TEST_DATA "/export/summary.csv"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), expected.readAll());
    QCOMPARE(farm.host.questions.size(), 0); // the text file is not offered for opening
}

void TestExports::failuresAreShownAndLeaveNoFile()
{
    Farm farm(ThreeCows);
    farm.session.inputs.producerNumber = u"07/12"_s;
    farm.host.summaryRows = {0};
    ExportCommands exports(farm.session);
    exports.exportSummaryXls();
    exports.exportSummaryCsv();
    QCOMPARE(farm.host.messages.size(), 2u);
    for (const auto& message : farm.host.messages) {
        QCOMPARE(message.caption, u"Błąd..."_s);
        QVERIFY2(message.text.startsWith(u"Nie można zapisać pliku"_s), qPrintable(message.text));
    }
    QVERIFY(farm.host.questions.isEmpty());
    QVERIFY(QDir(farm.session.dataFolder().exportFolder()).entryList(QDir::Files).isEmpty());
}

void TestExports::sheetsTooLongForTheFormatAreRefusedBeforeWriting_data()
{
    QTest::addColumn<bool>("summary"); // "Export XLS", else "Export rozczytanych zwierząt" of one herd
    QTest::addColumn<int>("records");
    QTest::addColumn<bool>("refused");
    // A sheet holds the title row, the records and the closing row: 65534 records at most.
    QTest::newRow("summary, fits") << true << 65534 << false;
    QTest::newRow("summary, one too many") << true << 65535 << true;
    QTest::newRow("herd, fits") << false << 65534 << false;
    QTest::newRow("herd, one too many") << false << 65535 << true;
}

void TestExports::sheetsTooLongForTheFormatAreRefusedBeforeWriting()
{
    QFETCH(bool, summary);
    QFETCH(int, records);
    QFETCH(bool, refused);
    Farm farm({});
    Table& table = summary ? farm.session.tables().mdRZ00() : farm.session.tables().mdRZ(1);
    table.setReadOnly(false);
    for (int i = 0; i < records; ++i) {
        table.append();
        table.setValue(0, u"PL%1"_s.arg(i));
        table.setValue(u"CzyMatka", 1);
        table.post();
        if (summary)
            farm.host.summaryRows.push_back(i);
    }
    farm.host.herdChoice = u"001"_s;
    farm.host.answerYes = false;
    ExportCommands exports(farm.session);
    if (summary)
        exports.exportSummaryXls();
    else
        exports.exportHerdAnimals();
    QCOMPARE(farm.host.messages.size(), 1u);
    const auto& message = farm.host.messages[0];
    QCOMPARE(message.caption, refused ? u"Błąd..."_s : u"Informacja"_s);
    QVERIFY2(!refused || (message.text.contains(u"65536"_s) && message.text.contains(u"65535"_s)),
             qPrintable(message.text));
    QCOMPARE(QDir(farm.session.dataFolder().exportFolder()).entryList(QDir::Files).size(), refused ? 0 : 1);
    QCOMPARE(farm.host.questions.isEmpty(), refused); // only a written workbook is offered for opening
}

QTEST_GUILESS_MAIN(TestExports)
#include "test_exports.moc"
