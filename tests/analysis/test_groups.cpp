#include "analysis/DeclaredLimits.h"
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
    void everyLimitReachesItsRangeText();
    void declaredLimitsFlagOnlyCountsAboveThem_data();
    void declaredLimitsFlagOnlyCountsAboveThem();
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

// Every key gets its own number, so a text built from the wrong key shows.
void TestGroups::everyLimitReachesItsRangeText()
{
    AgeLimits limits;
    int value = 101;
    for (const AgeLimitKey& key : AgeLimitKeys())
        limits.set(key.limit, value++);
    const std::vector<GroupRow> rows = CatalogueRows(limits, {});
    QCOMPARE(rows.size(), 40u); // every caption and range is compared end to end by the command-line check
    QStringList heads;
    for (std::size_t row : {0u, 9u, 16u, 25u, 39u})
        heads << rows[row].caption;
    QCOMPARE(heads.join(u'|'), u"Halvarn krów mamek|Halvarn opasów|Halvarn krów mlecznych|Cielęta |NIE ROZLICZONE"_s);
    const std::pair<int, const char*> expected[] = {
        {20, "Wiek <= 101"},       {21, "102 > Wiek <= 103"}, {22, "104 > Wiek <= 8"},   {24, "8 > Wiek <= 105"},
        {25, "106 > Wiek <= 18"},  {27, "Wiek <= 107"},       {28, "108 > Wiek <= 109"}, {29, "110 > Wiek <= 6"},
        {4, "Wiek <= 111"},        {5, "112 > Wiek <= 113"},  {6, "114 > Wiek <= 6"},    {11, "Wiek <= 115"},
        {12, "116 > Wiek <= 117"}, {13, "118 > Wiek <= 8"},   {14, "8 > Wiek <= 119"},   {15, "120 > Wiek <= 18"},
    };
    for (const auto& [id, range] : expected)
        QCOMPARE(RangeOf(rows, id), QString::fromLatin1(range));
    AgeLimits seven = AgeLimits::defaults();
    seven.set(AgeLimit::CieletaGrp_Ponad_220KG_Wiek_Od, 7);
    QCOMPARE(RangeOf(CatalogueRows(seven, {}), 29), u"7 > Wiek <= 6"_s);
}

void TestGroups::declaredLimitsFlagOnlyCountsAboveThem_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QStringList>("exceeded");
    const auto over = [](const char* name, int count, int limit) {
        return QStringList{
            u"Przekroczono zadeklarowaną liczbę: %1 — jest %2, zadeklarowano %3"_s.arg(QString::fromUtf8(name))
                .arg(count)
                .arg(limit)};
    };
    QTest::newRow("suckler cows over") << int(GroupId::SucklerMothers) << 11 << 10 << over("krów mamek", 11, 10);
    QTest::newRow("150-220 over") << int(GroupId::Fattening150To220) << 5 << 4 << over("opasów > 150 < 220", 5, 4);
    QTest::newRow("over 450 over") << int(GroupId::FatteningOver450) << 3 << 2 << over("opasów > 450", 3, 2);
    QTest::newRow("dairy over") << int(GroupId::DairyCows) << 51 << 50 << over("krów mlecznych", 51, 50);
    QTest::newRow("dairy at its limit") << int(GroupId::DairyCows) << 50 << 50 << QStringList();
    QTest::newRow("under") << int(GroupId::FatteningTo150) << 1 << 9 << QStringList();
    QTest::newRow("none declared") << int(GroupId::DairyCows) << 70 << 0 << QStringList();
}

void TestGroups::declaredLimitsFlagOnlyCountsAboveThem()
{
    QFETCH(int, group);
    QFETCH(int, count);
    QFETCH(int, limit);
    QFETCH(QStringList, exceeded);
    WorkingTables tables;
    for (Table* table : tables.all())
        table->open();
    RebuildGroupCatalogue(tables, AgeLimits::defaults(), {true, true, true});
    Table& groups = tables.mdGT00();
    DeclaredLimits limits{};
    for (int i = 0; i < DeclaredGroupCount; ++i)
        if (DeclaredGroupRow(static_cast<DeclaredGroup>(i)) == group)
            limits[static_cast<std::size_t>(i)] = limit;
    QVERIFY(groups.locate(groups.requireField("ID"), qint32(group)));
    const int row = groups.recNo();
    groups.setReadOnly(false);
    groups.edit();
    groups.setValue(group == GroupId::DairyCows ? "Ilosc" : "IloscPom", qint32(count));
    groups.post();
    groups.setReadOnly(true);

    QCOMPARE(ApplyDeclaredLimits(groups, limits), exceeded);
    QCOMPARE(CountOverLimit(groups), exceeded.size());
    QCOMPARE(OverLimit(groups, row), !exceeded.isEmpty());
    QCOMPARE(AsInteger(groups.at(row, groups.requireField("Limit"))), limit);
    QVERIFY(groups.readOnly());
    QVERIFY(!OverLimit(tables.mdGT(1), row));
}

QTEST_GUILESS_MAIN(TestGroups)
#include "test_groups.moc"
