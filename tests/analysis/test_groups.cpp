#include "analysis/GroupCatalogue.h"
#include "core/tables/WorkingTables.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QList<int> Ids(const Table& table)
{
    QList<int> ids;
    for (int row = 0; row < table.recordCount(); ++row)
        ids.append(AsInteger(table.at(row, 0)));
    return ids;
}

QList<int> Range(int from, int to)
{
    QList<int> ids;
    for (int id = from; id <= to; ++id)
        ids.append(id);
    return ids;
}

QString RangeOf(const std::vector<GroupRow>& rows, int id)
{
    for (const GroupRow& row : rows)
        if (row.id == id)
            return row.ageRange;
    return u"missing"_s;
}
} // namespace

class TestGroups : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ticksChooseTheBlocks_data();
    void ticksChooseTheBlocks();
    void rowsWithTheDefaultLimits_data();
    void rowsWithTheDefaultLimits();
    void everyLimitReachesItsRangeText();
};

void TestGroups::ticksChooseTheBlocks_data()
{
    QTest::addColumn<bool>("mamek");
    QTest::addColumn<bool>("opasow");
    QTest::addColumn<bool>("mlecznych");
    QTest::addColumn<QList<int>>("ids");
    for (int mask = 0; mask < 8; ++mask) {
        const bool a = mask & 1, b = mask & 2, c = mask & 4;
        QList<int> ids;
        if (a)
            ids += Range(1, 9);
        if (b)
            ids += Range(10, 16);
        if (c)
            ids += Range(17, 40);
        QTest::addRow("A%d B%d C%d", a, b, c) << a << b << c << ids;
    }
}

void TestGroups::ticksChooseTheBlocks()
{
    QFETCH(bool, mamek);
    QFETCH(bool, opasow);
    QFETCH(bool, mlecznych);
    QFETCH(QList<int>, ids);
    WorkingTables tables;
    for (Table* table : tables.all())
        table->open();
    RebuildGroupCatalogue(tables, AgeLimits::defaults(), {mamek, opasow, mlecznych});
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const Table& groups = tables.mdGT(slot);
        QCOMPARE(Ids(groups), ids);
        QVERIFY(groups.readOnly());
        for (int row = 0; row < groups.recordCount(); ++row) {
            QCOMPARE(AsString(groups.at(row, 6)), u"001"_s);
            QVERIFY(IsNull(groups.at(row, 3)) && IsNull(groups.at(row, 4)));
        }
    }
}

void TestGroups::rowsWithTheDefaultLimits_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("range");
    const char* rows[][3] = {
        {"1", "Halvarn krów mamek", "-"}, {"2", "  - mamki", "24 > Wiek"}, {"3", "  - Opasy do 300kg", ""},
        {"4", "  - Cielęta do 150kg", "Wiek <= 3"}, {"5", "  - Cieleta od 150kg do 220kg", "3 > Wiek <= 5"},
        {"6", "  - Cieleta powyżej 220kg", "5 > Wiek <= 6"}, {"7", "  - Jałówki od 6 do 19", "6 > Wiek <= 19"},
        {"8", "  - Jałówki od 19 do 24", "19 > Wiek <= 24"}, {"9", "", ""}, {"10", "Halvarn opasów", "-"},
        {"11", "  - waga <= 150 kg", "Wiek <= 3"}, {"12", "  - 150 kg > waga <= 220 kg", "3 > Wiek <= 4"},
        {"13", "  - 220 kg > waga <= 300 kg", "4 > Wiek <= 8"}, {"14", "  - 300 kg > waga <= 450 kg", "8 > Wiek <= 10"},
        {"15", "  - 450 kg > waga", "10 > Wiek <= 18"}, {"16", "", ""}, {"17", "Halvarn krów mlecznych", "24 > Wiek"},
        {"18", "", ""}, {"19", "Bydło opasowe do 300 kg", "6 > Wiek <= 8"}, {"20", "  - waga <= 150 kg", "Wiek <= 3"},
        {"21", "  - 150 kg > waga <= 220 kg", "3 > Wiek <= 4"}, {"22", "  - 220 kg > waga <= 300 kg", "4 > Wiek <= 8"},
        {"23", "Bydło opasowe ponad 300 kg", "8 > Wiek <= 18"}, {"24", "  - 300 kg > waga <= 450 kg", "8 > Wiek <= 10"},
        {"25", "  - 450 kg > waga", "10 > Wiek <= 18"}, {"26", "Cielęta ", "Wiek <= 6"},
        {"27", "  - Cielęta do 150kg", "Wiek <= 3"}, {"28", "  - Cieleta od 150kg do 220kg", "3 > Wiek <= 5"},
        {"29", "  - Cieleta powyżej 220kg", "5 > Wiek <= 6"}, {"30", "  - Cielęta (samice)", "Wiek <= 6"},
        {"31", "  - Cielęta (samce)", "Wiek <= 6"}, {"32", "Jałówki od 6 do 19", "6 > Wiek <= 19"},
        {"33", "Jałówki od 19 do 24", "19 > Wiek <= 24"}, {"34", "Krowy", "24 > Wiek"},
        {"35", "Byki", "6 > Wiek <= 24"}, {"36", "Buhaje", "24 > Wiek"},
        {"37", "Krowy mamki z cielętami do 150 kg", ""}, {"38", "Krowy mamki z cielętami 150 kg - 220 kg", ""},
        {"39", "Krowy mamki z cielętami 220 kg - 300 kg", ""}, {"40", "NIE ROZLICZONE", ""},
    };
    for (const auto& row : rows)
        QTest::newRow(row[0]) << QByteArray(row[0]).toInt() << QString::fromUtf8(row[1]) << QString::fromUtf8(row[2]);
}

void TestGroups::rowsWithTheDefaultLimits()
{
    QFETCH(int, id);
    QFETCH(QString, caption);
    QFETCH(QString, range);
    const std::vector<GroupRow> rows = CatalogueRows(AgeLimits::defaults(), {});
    QCOMPARE(rows.size(), 40u);
    const GroupRow& row = rows[static_cast<std::size_t>(id - 1)];
    QCOMPARE(row.id, id);
    QCOMPARE(row.caption, caption);
    QCOMPARE(row.ageRange, range);
}

// Every key gets its own number, so a text built from the wrong key shows.
void TestGroups::everyLimitReachesItsRangeText()
{
    AgeLimits limits;
    int value = 101;
    for (const AgeLimitKey& key : AgeLimitKeys())
        limits.set(key.limit, value++);
    const std::vector<GroupRow> rows = CatalogueRows(limits, {});
    const std::pair<int, const char*> expected[] = {
        {20, "Wiek <= 101"}, {21, "102 > Wiek <= 103"}, {22, "104 > Wiek <= 8"}, {24, "8 > Wiek <= 105"},
        {25, "106 > Wiek <= 18"}, {27, "Wiek <= 107"}, {28, "108 > Wiek <= 109"}, {29, "110 > Wiek <= 6"},
        {4, "Wiek <= 111"}, {5, "112 > Wiek <= 113"}, {6, "114 > Wiek <= 6"}, {11, "Wiek <= 115"},
        {12, "116 > Wiek <= 117"}, {13, "118 > Wiek <= 8"}, {14, "8 > Wiek <= 119"}, {15, "120 > Wiek <= 18"},
    };
    for (const auto& [id, range] : expected)
        QCOMPARE(RangeOf(rows, id), QString::fromLatin1(range));
    AgeLimits seven = AgeLimits::defaults();
    seven.set(AgeLimit::CieletaGrp_Ponad_220KG_Wiek_Od, 7);
    QCOMPARE(RangeOf(CatalogueRows(seven, {}), 29), u"7 > Wiek <= 6"_s);
}

QTEST_GUILESS_MAIN(TestGroups)
#include "test_groups.moc"
