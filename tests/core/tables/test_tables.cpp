#include "core/tables/TableLayouts.h"
#include "core/tables/WorkingTables.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
class CountingObserver : public TableObserver {
public:
    int resets = 0, inserts = 0, changes = 0, removals = 0;
    void tableReset() override { ++resets; }
    void rowInserted(int) override { ++inserts; }
    void rowChanged(int) override { ++changes; }
    void rowRemoved(int) override { ++removals; }
};

std::unique_ptr<Table> SortedById()
{
    auto table = std::make_unique<Table>(u"t"_s, GroupFields(), u"ID"_s);
    table->open();
    return table;
}

QList<int> Ids(const Table& table)
{
    QList<int> ids;
    for (int row = 0; row < table.recordCount(); ++row)
        ids.append(AsInteger(table.at(row, 0)));
    return ids;
}

void AppendGroup(Table& table, int id, const QString& caption = {})
{
    table.append();
    table.setValue(0, id);
    table.setValue(1, caption);
    table.post();
}
} // namespace

class TestTables : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readOnlyTablesRefuseEveryWrite_data();
    void readOnlyTablesRefuseEveryWrite();
    void writesRestoreReadOnlyByIdentity();
    void stringsAreCutToTheirSize_data();
    void stringsAreCutToTheirSize();
    void unsetFieldsAreNullAndCancelDiscards();
    void sortKeepsRowsOrderedStably();
    void navigationAndNotifications();
};

void TestTables::readOnlyTablesRefuseEveryWrite_data()
{
    QTest::addColumn<int>("operation");
    int operation = 0;
    for (const char* name : {"append", "edit", "delete", "set a value"})
        QTest::newRow(name) << operation++;
}

void TestTables::readOnlyTablesRefuseEveryWrite()
{
    QFETCH(int, operation);
    WorkingTables tables;
    Table& herd = tables.mdRZ(5);
    herd.open();
    herd.setReadOnly(false);
    herd.append();
    herd.setValue(0, u"PL1"_s);
    herd.post();
    if (operation == 3)
        herd.edit();
    herd.setReadOnly(true);
    try {
        switch (operation) {
        case 0: herd.append(); break;
        case 1: herd.edit(); break;
        case 2: herd.remove(); break;
        default: herd.setValue(0, u"PL2"_s);
        }
        QFAIL("a read-only table accepted a write");
    } catch (const TableError& error) {
        QVERIFY(QString::fromUtf8(error.what()).contains(u"mdRZ05"_s));
    }
    herd.cancel();
    QCOMPARE(AsString(herd.value(0)), u"PL1"_s);
}

void TestTables::writesRestoreReadOnlyByIdentity()
{
    WorkingTables tables;
    for (Table* table : {&tables.mdRZ00(), &tables.mdRZ(3)}) {
        table->open();
        table->setReadOnly(false);
        table->append();
        table->post();
        table->setReadOnly(false); // writable before, whatever the table
        tables.MarkAnimalReviewed(*table, u"X"_s, u"Krowy, 24 > Wiek"_s);
        QCOMPARE(AsString(table->value(u"Rozpatrzono")), u"X"_s);
    }
    QVERIFY(!tables.mdRZ00().readOnly());
    QVERIFY(tables.mdRZ(3).readOnly());
    tables.ClearTable(tables.mdRZ(3));
    QVERIFY(tables.mdRZ(3).isEmpty() && tables.mdRZ(3).readOnly());
    tables.ClearTable(tables.mdRZ00());
    QVERIFY(tables.mdRZ00().isEmpty() && !tables.mdRZ00().readOnly());
}

void TestTables::stringsAreCutToTheirSize_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("kept");
    QTest::newRow("GdzieRozpatrzono") << u"GdzieRozpatrzono"_s << 130 << 100;
    QTest::newRow("Plec") << u"Plec"_s << 11 << 10;
    QTest::newRow("Rozpatrzono") << u"Rozpatrzono"_s << 4 << 3;
    QTest::newRow("STADO, fits") << u"STADO"_s << 5 << 5;
}

void TestTables::stringsAreCutToTheirSize()
{
    QFETCH(QString, field);
    QFETCH(int, given);
    QFETCH(int, kept);
    WorkingTables tables;
    Table& summary = tables.mdRZ00();
    summary.open();
    summary.append();
    const QString text = QString(given, u'ż'); // a Polish letter is one character
    summary.setValue(field, text);
    summary.post();
    QCOMPARE(AsString(summary.value(field)), text.left(kept));
}

void TestTables::unsetFieldsAreNullAndCancelDiscards()
{
    WorkingTables tables;
    Table& summary = tables.mdRZ00();
    summary.open();
    summary.append();
    summary.setValue(u"CzyMatka", 65537); // Int16 keeps 16 bits
    summary.post();
    QVERIFY(IsNull(summary.value(u"DataUrodzenia")));
    QVERIFY(IsNull(summary.value(u"ZAZNACZONE")));
    QCOMPARE(AsInteger(summary.value(u"CzyMatka")), 1);
    summary.edit();
    summary.setValue(u"Wiek", 7);
    QCOMPARE(AsInteger(summary.value(u"Wiek")), 7);
    summary.cancel();
    QVERIFY(IsNull(summary.value(u"Wiek")));
    summary.append();
    summary.cancel();
    QCOMPARE(summary.recordCount(), 1);
    QVERIFY_THROWS_EXCEPTION(TableError, summary.setValue(u"Wiek", u"dwa"_s));
}

void TestTables::sortKeepsRowsOrderedStably()
{
    const auto owner = SortedById();
    Table& table = *owner;
    for (int id : {30, 10, 20, 10, 40})
        AppendGroup(table, id, QString::number(table.recordCount()));
    QCOMPARE(Ids(table), (QList<int>{10, 10, 20, 30, 40}));
    QCOMPARE(AsString(table.at(0, 1)), u"1"_s); // equal keys keep their order
    QCOMPARE(AsString(table.at(1, 1)), u"3"_s);
    table.moveTo(4);
    table.edit();
    table.setValue(0, 15);
    table.post();
    QCOMPARE(Ids(table), (QList<int>{10, 10, 15, 20, 30}));
    QCOMPARE(table.recNo(), 2); // the edited record stays current
    table.moveTo(0);
    table.edit();
    table.setValue(3, 5); // another field: no move
    table.post();
    QCOMPARE(table.recNo(), 0);

    WorkingTables tables; // a sort on a field the table lacks is inert
    Table& producer = tables.mdProducent();
    producer.setReadOnly(false);
    for (const char* name : {"Z", "A"}) {
        producer.append();
        producer.setValue(u"PRODUCENT", QLatin1String(name));
        producer.post();
    }
    QCOMPARE(AsString(producer.at(0, 0)), u"Z"_s);
}

void TestTables::navigationAndNotifications()
{
    const auto owner = SortedById();
    Table& table = *owner;
    CountingObserver observer;
    table.addObserver(&observer);
    int posts = 0;
    table.setAfterPost([&posts](Table&) { ++posts; });
    AppendGroup(table, 1);
    AppendGroup(table, 2);
    QCOMPARE(posts, 2);
    QCOMPARE(observer.inserts, 2);
    table.disableControls();
    AppendGroup(table, 3);
    table.first();
    table.remove();
    QCOMPARE(observer.inserts, 2);
    table.enableControls();
    QCOMPARE(observer.resets, 1);
    QList<int> walked;
    for (table.first(); !table.eof(); table.next())
        walked.append(AsInteger(table.value(0)));
    QCOMPARE(walked, (QList<int>{2, 3}));
    QCOMPARE(table.recNo(), 1); // past the end the last record stays current
    QVERIFY(table.locate(0, 2) && table.recNo() == 0);
    QVERIFY(!table.locate(0, 9));
    table.removeObserver(&observer);
}

QTEST_GUILESS_MAIN(TestTables)
#include "test_tables.moc"
