#include "analysis/GroupCatalogue.h"
#include "analysis/WelfareAnalysis.h"
#include "app/tables/WorkingTables.h"

#include <QTest>

#include <map>

namespace {
WelfareFlags Kinds(const QString& kinds)
{
    return {kinds.contains(u'A'), kinds.contains(u'B'), kinds.contains(u'C')};
}

// "Key=value;…" over the default limits.
AgeLimits Limits(const QString& changes)
{
    AgeLimits limits = AgeLimits::defaults();
    for (const QString& change : changes.split(u';', Qt::SkipEmptyParts)) {
        const QStringList parts = change.split(u'=');
        for (const AgeLimitKey& key : AgeLimitKeys())
            if (parts[0] == QLatin1String(key.key))
                limits.set(key.limit, parts[1].toInt());
    }
    return limits;
}

// Tables with the catalogue built, and animals written as the download writes them.
struct Herds {
    Herds(const QString& kinds, const AgeLimits& limits) : analysis(tables, limits, Kinds(kinds))
    {
        for (Table* table : tables.all())
            table->open();
        RebuildGroupCatalogue(tables, limits, Kinds(kinds));
    }

    void add(int slot, const AnimalFacts& facts)
    {
        for (Table* table : {&tables.mdRZ00(), &tables.mdRZ(slot)}) {
            table->setReadOnly(false);
            table->append();
            table->setValue(0, QStringLiteral("PL%1").arg(table->recordCount()));
            table->post();
            tables.restoreReadOnly(*table);
        }
        analysis.analyse(facts, slot);
    }

    // "I17 P30": Ilosc of row 17, IloscPom of row 30, one letter per count.
    static QString Counts(const Table& groups)
    {
        QStringList counts;
        for (int row = 0; row < groups.recordCount(); ++row) {
            const int id = AsInteger(groups.at(row, 0));
            for (int i = 0; i < AsInteger(groups.at(row, 3)); ++i)
                counts.append(QStringLiteral("I%1").arg(id));
            for (int i = 0; i < AsInteger(groups.at(row, 4)); ++i)
                counts.append(QStringLiteral("P%1").arg(id));
        }
        return counts.join(u' ');
    }

    static QString Mark(const Table& animals, const char* field)
    {
        const FieldValue& value = animals.at(animals.recordCount() - 1, animals.requireField(QLatin1String(field)));
        return IsNull(value) ? QStringLiteral("null") : AsString(value);
    }

    WorkingTables tables;
    WelfareAnalysis analysis;
};
} // namespace

class TestWelfare : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneAnimal_data();
    void oneAnimal();
    void animalNotWrittenIsNeitherCountedNorMarked();
    void countsAddUpOverHerdsIntoTheSummary();
    void calfAgeIsNeverAskedBecauseOlderCowsAreTakenFirst();
};

void TestWelfare::oneAnimal_data()
{
    QTest::addColumn<QString>("kinds");
    QTest::addColumn<QString>("limits");
    QTest::addColumn<QString>("sex");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<int>("age");
    QTest::addColumn<QString>("summaryMark");
    QTest::addColumn<QString>("herdMark");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("counts");
    const QString mamek = QStringLiteral("Halvarn krów mamek, -");
    const QString opasow = QStringLiteral("Halvarn opasów, -");
    const QString none;
    // Block A: meat cows, or combined cows of meat direction.
    QTest::newRow("A1 suckler cow") << QStringLiteral("A") << none << QStringLiteral("XX") << QStringLiteral("MI") << QStringLiteral("MI") << 30 << QStringLiteral("D") << QStringLiteral("D") << mamek << QStringLiteral("I1 P2");
    QTest::newRow("A1 combined, meat direction") << QStringLiteral("ABC") << none << QStringLiteral("XX") << QStringLiteral("KO") << QStringLiteral("MI") << 25 << QStringLiteral("D") << QStringLiteral("D") << mamek << QStringLiteral("I1 P2");
    QTest::newRow("A2 calf of 8 months") << QStringLiteral("A") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("OP") << 8 << QStringLiteral("D") << QStringLiteral("D") << mamek << QStringLiteral("I1 P3");
    QTest::newRow("A3 with a raised limit") << QStringLiteral("A") << QStringLiteral("HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do=10") << QStringLiteral("XY") << QStringLiteral("MI")
                                            << QStringLiteral("MI") << 9 << QStringLiteral("D") << QStringLiteral("D") << mamek << QStringLiteral("I1 P4");
    QTest::newRow("A4 with raised limits") << QStringLiteral("A") << QStringLiteral("HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od=8;"
                                                                             "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do=10")
                                           << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("MI") << 9 << QStringLiteral("D") << QStringLiteral("D") << mamek << QStringLiteral("I1 P5");
    QTest::newRow("A6 heifer: no code in the summary") << QStringLiteral("ABC") << none << QStringLiteral("XX") << QStringLiteral("MI") << QStringLiteral("MI") << 12 << QStringLiteral("")
                                                       << QStringLiteral("DX") << mamek << QStringLiteral("I1 P7");
    QTest::newRow("A7 heifer") << QStringLiteral("A") << none << QStringLiteral("XX") << QStringLiteral("MI") << QStringLiteral("MI") << 24 << QStringLiteral("D") << QStringLiteral("D") << mamek << QStringLiteral("I1 P8");
    QTest::newRow("A: a young bull fits no step, C unticked") << QStringLiteral("A") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("MI") << 12 << QStringLiteral("null")
                                                              << QStringLiteral("null") << QStringLiteral("null") << QStringLiteral("");
    QTest::newRow("A: dairy cows are not sucklers") << QStringLiteral("A") << none << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 30 << QStringLiteral("null") << QStringLiteral("null")
                                                    << QStringLiteral("null") << QStringLiteral("");
    // Block B: fattening directions up to 18 months, with independent sub-counts.
    QTest::newRow("B 12-month bull: sub 15") << QStringLiteral("BC") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("OP") << 12 << QStringLiteral("D") << QStringLiteral("D") << opasow << QStringLiteral("I10 P15");
    QTest::newRow("B up to 150 kg") << QStringLiteral("B") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("MLOP") << 2 << QStringLiteral("D") << QStringLiteral("D") << opasow << QStringLiteral("I10 P11");
    QTest::newRow("B 150-220 kg") << QStringLiteral("B") << none << QStringLiteral("XY") << QStringLiteral("KO") << QStringLiteral("MIOP") << 4 << QStringLiteral("D") << QStringLiteral("D") << opasow << QStringLiteral("I10 P12");
    QTest::newRow("B 220-300 kg") << QStringLiteral("B") << none << QStringLiteral("XX") << QStringLiteral("KO") << QStringLiteral("OP") << 6 << QStringLiteral("D") << QStringLiteral("D") << opasow << QStringLiteral("I10 P13");
    QTest::newRow("B 300-450 kg") << QStringLiteral("B") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("OP") << 9 << QStringLiteral("D") << QStringLiteral("D") << opasow << QStringLiteral("I10 P14");
    QTest::newRow("B overlapping limits count twice") << QStringLiteral("B") << QStringLiteral("HalvOpasowGrp_Do_150KG_Wiek_Do=5") << QStringLiteral("XY") << QStringLiteral("MI")
                                                      << QStringLiteral("OP") << 4 << QStringLiteral("D") << QStringLiteral("D") << opasow << QStringLiteral("I10 P11 P12");
    QTest::newRow("B stops at 18 months") << QStringLiteral("BC") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("OP") << 19 << QStringLiteral("X") << QStringLiteral("X")
                                          << QStringLiteral("Byki, 6 > Wiek <= 24") << QStringLiteral("I35");
    QTest::newRow("B needs a fattening direction") << QStringLiteral("B") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("MI") << 5 << QStringLiteral("null") << QStringLiteral("null")
                                                   << QStringLiteral("null") << QStringLiteral("");
    // Block C.
    QTest::newRow("C1 dairy cow") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 30 << QStringLiteral("D") << QStringLiteral("D")
                                  << QStringLiteral("Halvarn krów mlecznych, 24 > Wiek") << QStringLiteral("I17");
    QTest::newRow("C1 combined, milk direction") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("KO") << QStringLiteral("ML") << 25 << QStringLiteral("D") << QStringLiteral("D")
                                                 << QStringLiteral("Halvarn krów mlecznych, 24 > Wiek") << QStringLiteral("I17");
    QTest::newRow("C2 up to 150 kg") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("OP") << 2 << QStringLiteral("X") << QStringLiteral("X")
                                     << QStringLiteral("Bydło opasowe do 300 kg, 6 > Wiek <= 8") << QStringLiteral("I19 P20");
    QTest::newRow("C2 150-220 kg") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("OP") << 4 << QStringLiteral("X") << QStringLiteral("X")
                                   << QStringLiteral("Bydło opasowe do 300 kg, 6 > Wiek <= 8") << QStringLiteral("I19 P21");
    QTest::newRow("C2 220-300 kg") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("KO") << QStringLiteral("MLOP") << 8 << QStringLiteral("X") << QStringLiteral("X")
                                   << QStringLiteral("Bydło opasowe do 300 kg, 6 > Wiek <= 8") << QStringLiteral("I19 P22");
    QTest::newRow("C3 300-450 kg") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("MI") << QStringLiteral("MIOP") << 10 << QStringLiteral("X") << QStringLiteral("X")
                                   << QStringLiteral("Bydło opasowe ponad 300 kg, 8 > Wiek <= 18") << QStringLiteral("I23 P24");
    QTest::newRow("C3 over 450 kg") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("MI") << QStringLiteral("OP") << 18 << QStringLiteral("X") << QStringLiteral("X")
                                    << QStringLiteral("Bydło opasowe ponad 300 kg, 8 > Wiek <= 18") << QStringLiteral("I23 P25");
    QTest::newRow("C4 female calf of 3 months") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 3 << QStringLiteral("X") << QStringLiteral("X")
                                                << QStringLiteral("Cielęta , Wiek <= 6") << QStringLiteral("I26 P27 P30");
    QTest::newRow("C4 male calf of 5 months") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("ML") << 5 << QStringLiteral("X") << QStringLiteral("X")
                                              << QStringLiteral("Cielęta , Wiek <= 6") << QStringLiteral("I26 P28 P31");
    QTest::newRow("C4 calf of 6 months") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("ML") << 6 << QStringLiteral("X") << QStringLiteral("X")
                                         << QStringLiteral("Cielęta , Wiek <= 6") << QStringLiteral("I26 P29 P31");
    QTest::newRow("C4 with changed limits") << QStringLiteral("C") << QStringLiteral("CieletaGrp_Do_150KG_Wiek_Do=4;CieletaGrp_Ponad_220KG_Wiek_Od=2")
                                            << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 4 << QStringLiteral("X") << QStringLiteral("X") << QStringLiteral("Cielęta , Wiek <= 6")
                                            << QStringLiteral("I26 P27 P28 P29 P30");
    QTest::newRow("C5 heifer") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 19 << QStringLiteral("X") << QStringLiteral("X")
                               << QStringLiteral("Jałówki od 6 do 19, 6 > Wiek <= 19") << QStringLiteral("I32");
    QTest::newRow("C6 heifer") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 24 << QStringLiteral("X") << QStringLiteral("X")
                               << QStringLiteral("Jałówki od 19 do 24, 19 > Wiek <= 24") << QStringLiteral("I33");
    QTest::newRow("C7 meat cow in the dairy block") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("MI") << QStringLiteral("MI") << 30 << QStringLiteral("X") << QStringLiteral("X")
                                                    << QStringLiteral("Krowy, 24 > Wiek") << QStringLiteral("I34");
    QTest::newRow("C7 cow of an unknown use type") << QStringLiteral("C") << none << QStringLiteral("XX") << QStringLiteral("") << QStringLiteral("") << 30 << QStringLiteral("MD") << QStringLiteral("MD")
                                                   << QStringLiteral("Krowy, 24 > Wiek") << QStringLiteral("I34 P34");
    QTest::newRow("C8 young bull") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("ML") << 7 << QStringLiteral("X") << QStringLiteral("X")
                                   << QStringLiteral("Byki, 6 > Wiek <= 24") << QStringLiteral("I35");
    QTest::newRow("C9 bull") << QStringLiteral("C") << none << QStringLiteral("XY") << QStringLiteral("ML") << QStringLiteral("ML") << 25 << QStringLiteral("X") << QStringLiteral("X") << QStringLiteral("Buhaje, 24 > Wiek") << QStringLiteral("I36");
    QTest::newRow("nothing ticked") << QStringLiteral("") << none << QStringLiteral("XX") << QStringLiteral("ML") << QStringLiteral("ML") << 30 << QStringLiteral("null") << QStringLiteral("null") << QStringLiteral("null") << QStringLiteral("");
}

void TestWelfare::oneAnimal()
{
    QFETCH(QString, kinds);
    QFETCH(QString, limits);
    QFETCH(QString, sex);
    QFETCH(QString, type);
    QFETCH(QString, direction);
    QFETCH(int, age);
    QFETCH(QString, summaryMark);
    QFETCH(QString, herdMark);
    QFETCH(QString, where);
    QFETCH(QString, counts);
    Herds herds(kinds, Limits(limits));
    herds.add(3, {sex, type, direction, age, true, [] { return 1; }});
    QCOMPARE(Herds::Mark(herds.tables.mdRZ00(), "Rozpatrzono"), summaryMark);
    QCOMPARE(Herds::Mark(herds.tables.mdRZ(3), "Rozpatrzono"), herdMark);
    QCOMPARE(Herds::Mark(herds.tables.mdRZ00(), "GdzieRozpatrzono"), where);
    QCOMPARE(Herds::Mark(herds.tables.mdRZ(3), "GdzieRozpatrzono"), where);
    QCOMPARE(Herds::Counts(herds.tables.mdGT00()), counts);
    QCOMPARE(Herds::Counts(herds.tables.mdGT(3)), counts);
    QCOMPARE(Herds::Counts(herds.tables.mdGT(4)), QString());
}

void TestWelfare::animalNotWrittenIsNeitherCountedNorMarked()
{
    Herds herds(QStringLiteral("ABC"), AgeLimits::defaults());
    herds.add(1, {QStringLiteral("XX"), QStringLiteral("ML"), QStringLiteral("ML"), 30, false, {}});
    QCOMPARE(Herds::Counts(herds.tables.mdGT00()), QString());
    QCOMPARE(Herds::Mark(herds.tables.mdRZ00(), "Rozpatrzono"), QStringLiteral("null"));
}

void TestWelfare::countsAddUpOverHerdsIntoTheSummary()
{
    Herds herds(QStringLiteral("ABC"), AgeLimits::defaults());
    const QString f = QStringLiteral("XX"), ml = QStringLiteral("ML");
    herds.add(1, {f, ml, ml, 30, true, {}});
    herds.add(1, {f, ml, ml, 40, true, {}});
    herds.add(2, {f, ml, ml, 50, true, {}});
    herds.add(2, {f, ml, ml, 3, true, {}});
    QCOMPARE(Herds::Counts(herds.tables.mdGT(1)), QStringLiteral("I17 I17"));
    QCOMPARE(Herds::Counts(herds.tables.mdGT(2)), QStringLiteral("I17 I26 P27 P30"));
    QCOMPARE(Herds::Counts(herds.tables.mdGT00()), QStringLiteral("I17 I17 I17 I26 P27 P30"));
}

void TestWelfare::calfAgeIsNeverAskedBecauseOlderCowsAreTakenFirst()
{
    Herds herds(QStringLiteral("C"), AgeLimits::defaults());
    int asked = 0;
    const auto calfAge = [&asked] { return ++asked, 2; };
    for (const char* type : {"MI", "KO", "ML", "XX", ""})
        for (const char* direction : {"OP", "MI", "MIOP", "MLOP", "ML", ""})
            herds.add(1, {QStringLiteral("XX"), QLatin1String(type), QLatin1String(direction), 40, true, calfAge});
    QCOMPARE(asked, 0);
    for (int id : {37, 38, 39, 40})
        QVERIFY(!Herds::Counts(herds.tables.mdGT00()).contains(QStringLiteral("%1").arg(id)));
}

QTEST_GUILESS_MAIN(TestWelfare)
#include "test_welfare.moc"
