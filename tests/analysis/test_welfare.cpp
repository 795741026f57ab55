#include "analysis/AgeInMonths.h"
#include "analysis/GroupCatalogue.h"
#include "analysis/WelfareAnalysis.h"
#include "core/tables/WorkingTables.h"

#include <QTest>

#include <map>

using namespace Qt::StringLiterals;

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
            table->setValue(0, u"PL%1"_s.arg(table->recordCount()));
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
                counts.append(u"I%1"_s.arg(id));
            for (int i = 0; i < AsInteger(groups.at(row, 4)); ++i)
                counts.append(u"P%1"_s.arg(id));
        }
        return counts.join(u' ');
    }

    static QString Mark(const Table& animals, const char* field)
    {
        const FieldValue& value = animals.at(animals.recordCount() - 1, animals.requireField(QLatin1String(field)));
        return IsNull(value) ? u"null"_s : AsString(value);
    }

    WorkingTables tables;
    WelfareAnalysis analysis;
};
} // namespace

class TestWelfare : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ageInMonths_data();
    void ageInMonths();
    void oneAnimal_data();
    void oneAnimal();
    void animalNotWrittenIsNeitherCountedNorMarked();
    void countsAddUpOverHerdsIntoTheSummary();
    void calfAgeIsNeverAskedBecauseOlderCowsAreTakenFirst();
};

void TestWelfare::ageInMonths_data()
{
    QTest::addColumn<QDate>("birth");
    QTest::addColumn<QDate>("onDay");
    QTest::addColumn<int>("months");
    QTest::newRow("60 days") << QDate(2024, 1, 15) << QDate(2024, 3, 15) << 2;
    QTest::newRow("one year: 365 days") << QDate(2023, 1, 15) << QDate(2024, 1, 15) << 11;
    QTest::newRow("same day") << QDate(2024, 5, 5) << QDate(2024, 5, 5) << 0;
    QTest::newRow("309 days") << QDate(2023, 1, 15) << QDate(2023, 11, 20) << 11;
    QTest::newRow("304 days, months differ") << QDate(2023, 1, 15) << QDate(2023, 11, 15) << 10;
    QTest::newRow("1095 days") << QDate(2020, 3, 10) << QDate(2023, 3, 10) << 35;
    QTest::newRow("61 days") << QDate(2020, 3, 10) << QDate(2020, 5, 10) << 3;
    QTest::newRow("730 days") << QDate(2021, 3, 15) << QDate(2023, 3, 15) << 23;
    QTest::newRow("731 days over 29 February") << QDate(2022, 3, 15) << QDate(2024, 3, 15) << 24;
    QTest::newRow("reversed") << QDate(2024, 3, 15) << QDate(2024, 1, 15) << 2;
}

void TestWelfare::ageInMonths()
{
    QFETCH(QDate, birth);
    QFETCH(QDate, onDay);
    QFETCH(int, months);
    QCOMPARE(AgeInMonths(ToDateTime(birth), ToDateTime(onDay)), months);
    QCOMPARE(AgeInMonths(ToDateTime(birth) + 0.75, ToDateTime(onDay) + 0.1), months); // times of day do not count
    // No birth date: aged from day -700000, 745292 days before 1 January 2024.
    QCOMPARE(AgeInMonths(EmptyDate, ToDateTime(QDate(2024, 1, 1))), 24486);
}

void TestWelfare::oneAnimal_data()
{
    QTest::addColumn<QString>("kinds");  // the ticked blocks A, B, C
    QTest::addColumn<QString>("limits"); // "Key=value;…" over the defaults
    QTest::addColumn<QString>("animal"); // "sex type direction age", "-" for an empty code
    QTest::addColumn<QString>("marks");  // "summary/herd", "null" for not marked
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("counts");
    struct Row {
        const char *name, *kinds, *limits, *animal, *marks, *where, *counts;
    };
    const char* const mamek = "Halvarn krów mamek, -";
    const char* const opasow = "Halvarn opasów, -";
    const char* const do300 = "Bydło opasowe do 300 kg, 6 > Wiek <= 8";
    const char* const ponad300 = "Bydło opasowe ponad 300 kg, 8 > Wiek <= 18";
    const char* const calves = "Cielęta , Wiek <= 6";
    const char* const cows = "Krowy, 24 > Wiek";
    const char* const bulls = "Byki, 6 > Wiek <= 24";
    const Row rows[] = {
        // Block A: meat cows, or combined cows of meat direction.
        {"A1 suckler cow", "A", "", "XX MI MI 30", "D/D", mamek, "I1 P2"},
        {"A1 combined, meat direction", "ABC", "", "XX KO MI 25", "D/D", mamek, "I1 P2"},
        {"A2 calf of 8 months", "A", "", "XY MI OP 8", "D/D", mamek, "I1 P3"},
        {"A3 with a raised limit", "A", "HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do=10", "XY MI MI 9", "D/D", mamek,
         "I1 P4"},
        {"A4 with raised limits", "A",
         "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od=8;HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do=10",
         "XY MI MI 9", "D/D", mamek, "I1 P5"},
        {"A5 is taken by A2 whatever its limit", "A", "HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od=2", "XY MI MI 5",
         "D/D", mamek, "I1 P3"},
        {"A6 heifer: no code in the summary", "ABC", "", "XX MI MI 12", "/DX", mamek, "I1 P7"},
        {"A7 heifer", "A", "", "XX MI MI 24", "D/D", mamek, "I1 P8"},
        {"A: a young bull fits no step, C unticked", "A", "", "XY MI MI 12", "null/null", "null", ""},
        {"A: dairy cows are not sucklers", "A", "", "XX ML ML 30", "null/null", "null", ""},
        // Block B: fattening directions up to 18 months, with independent sub-counts.
        {"B 12-month bull: sub 15", "BC", "", "XY MI OP 12", "D/D", opasow, "I10 P15"},
        {"B up to 150 kg", "B", "", "XY ML MLOP 3", "D/D", opasow, "I10 P11"},
        {"B 150-220 kg", "B", "", "XY KO MIOP 4", "D/D", opasow, "I10 P12"},
        {"B 220-300 kg", "B", "", "XX KO OP 6", "D/D", opasow, "I10 P13"},
        {"B 300-450 kg", "B", "", "XY MI OP 9", "D/D", opasow, "I10 P14"},
        {"B overlapping limits count twice", "B", "HalvOpasowGrp_Do_150KG_Wiek_Do=5", "XY MI OP 4", "D/D", opasow,
         "I10 P11 P12"},
        {"B 220-300 kg, raised lower limit", "B", "HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od=7", "XY MI OP 7", "D/D",
         opasow, "I10"},
        {"B 300-450 kg, raised upper limit overlaps over 450 kg", "B", "HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do=12",
         "XY MI OP 11", "D/D", opasow, "I10 P14 P15"},
        {"B over 450 kg, raised lower limit", "B", "HalvOpasowGrp_Ponad_450KG_Wiek_Od=15", "XY MI OP 12", "D/D", opasow,
         "I10"},
        {"B stops at 18 months", "BC", "", "XY MI OP 19", "X/X", bulls, "I35"},
        {"B needs a fattening direction", "B", "", "XY MI MI 5", "null/null", "null", ""},
        // Block C.
        {"C1 dairy cow", "C", "", "XX ML ML 30", "D/D", "Halvarn krów mlecznych, 24 > Wiek", "I17"},
        {"C1 combined, milk direction", "C", "", "XX KO ML 25", "D/D", "Halvarn krów mlecznych, 24 > Wiek", "I17"},
        {"C2 up to 150 kg", "C", "", "XY ML OP 3", "X/X", do300, "I19 P20"},
        {"C2 150-220 kg", "C", "", "XY ML OP 4", "X/X", do300, "I19 P21"},
        {"C2 220-300 kg", "C", "", "XY KO MLOP 8", "X/X", do300, "I19 P22"},
        {"C3 300-450 kg", "C", "", "XY MI MIOP 10", "X/X", ponad300, "I23 P24"},
        {"C3 over 450 kg", "C", "", "XX MI OP 18", "X/X", ponad300, "I23 P25"},
        {"C2 overlapping limits count twice", "C",
         "BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od=1;BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do=6", "XY ML OP 2", "X/X",
         do300, "I19 P20 P21"},
        {"C2 raised lower limit of 220-300 kg", "C", "BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od=7", "XY ML OP 6", "X/X",
         do300, "I19"},
        {"C3 changed limits count twice", "C",
         "BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do=15;BydloOpasoweGrp_Ponad_450KG_Wiek_Od=12", "XY KO MLOP 14", "X/X",
         ponad300, "I23 P24 P25"},
        {"C4 female calf of 3 months", "C", "", "XX ML ML 3", "X/X", calves, "I26 P27 P30"},
        {"C4 male calf of 5 months", "C", "", "XY ML ML 5", "X/X", calves, "I26 P28 P31"},
        {"C4 calf of 6 months", "C", "", "XY ML ML 6", "X/X", calves, "I26 P29 P31"},
        {"C4 with changed limits", "C", "CieletaGrp_Do_150KG_Wiek_Do=4;CieletaGrp_Ponad_220KG_Wiek_Od=2", "XX ML ML 4",
         "X/X", calves, "I26 P27 P28 P29 P30"},
        {"C5 heifer", "C", "", "XX ML ML 19", "X/X", "Jałówki od 6 do 19, 6 > Wiek <= 19", "I32"},
        {"C6 heifer", "C", "", "XX ML ML 24", "X/X", "Jałówki od 19 do 24, 19 > Wiek <= 24", "I33"},
        {"C7 meat cow in the dairy block", "C", "", "XX MI MI 30", "X/X", cows, "I34"},
        {"C7 cow of an unknown use type", "C", "", "XX - - 30", "MD/MD", cows, "I34 P34"},
        {"C7 combined cow of another direction", "C", "", "XX KO XX 30", "MD/MD", cows, "I34 P34"},
        {"C8 young bull", "C", "", "XY ML ML 7", "X/X", bulls, "I35"},
        {"C9 bull", "C", "", "XY ML ML 25", "X/X", "Buhaje, 24 > Wiek", "I36"},
        {"nothing ticked", "", "", "XX ML ML 30", "null/null", "null", ""},
    };
    for (const Row& r : rows)
        QTest::newRow(r.name) << QString::fromUtf8(r.kinds) << QString::fromUtf8(r.limits)
                              << QString::fromUtf8(r.animal) << QString::fromUtf8(r.marks) << QString::fromUtf8(r.where)
                              << QString::fromUtf8(r.counts);
}

void TestWelfare::oneAnimal()
{
    QFETCH(QString, kinds);
    QFETCH(QString, limits);
    QFETCH(QString, animal);
    QFETCH(QString, marks);
    QFETCH(QString, where);
    QFETCH(QString, counts);
    QStringList facts = animal.split(u' ');
    facts.replaceInStrings(u"-"_s, QString());
    Herds herds(kinds, Limits(limits));
    herds.add(3, {facts[0], facts[1], facts[2], facts[3].toInt(), true, [] { return 1; }});
    QCOMPARE(Herds::Mark(herds.tables.mdRZ00(), "Rozpatrzono"), marks.section(u'/', 0, 0));
    QCOMPARE(Herds::Mark(herds.tables.mdRZ(3), "Rozpatrzono"), marks.section(u'/', 1, 1));
    QCOMPARE(Herds::Mark(herds.tables.mdRZ00(), "GdzieRozpatrzono"), where);
    QCOMPARE(Herds::Mark(herds.tables.mdRZ(3), "GdzieRozpatrzono"), where);
    QCOMPARE(Herds::Counts(herds.tables.mdGT00()), counts);
    QCOMPARE(Herds::Counts(herds.tables.mdGT(3)), counts);
    QCOMPARE(Herds::Counts(herds.tables.mdGT(4)), QString());
}

void TestWelfare::animalNotWrittenIsNeitherCountedNorMarked()
{
    Herds herds(u"ABC"_s, AgeLimits::defaults());
    herds.add(1, {u"XX"_s, u"ML"_s, u"ML"_s, 30, false, {}});
    QCOMPARE(Herds::Counts(herds.tables.mdGT00()), QString());
    QCOMPARE(Herds::Mark(herds.tables.mdRZ00(), "Rozpatrzono"), u"null"_s);
}

void TestWelfare::countsAddUpOverHerdsIntoTheSummary()
{
    Herds herds(u"ABC"_s, AgeLimits::defaults());
    const QString f = u"XX"_s, ml = u"ML"_s;
    herds.add(1, {f, ml, ml, 30, true, {}});
    herds.add(1, {f, ml, ml, 40, true, {}});
    herds.add(2, {f, ml, ml, 50, true, {}});
    herds.add(2, {f, ml, ml, 3, true, {}});
    QCOMPARE(Herds::Counts(herds.tables.mdGT(1)), u"I17 I17"_s);
    QCOMPARE(Herds::Counts(herds.tables.mdGT(2)), u"I17 I26 P27 P30"_s);
    QCOMPARE(Herds::Counts(herds.tables.mdGT00()), u"I17 I17 I17 I26 P27 P30"_s);
}

void TestWelfare::calfAgeIsNeverAskedBecauseOlderCowsAreTakenFirst()
{
    Herds herds(u"C"_s, AgeLimits::defaults());
    int asked = 0;
    const auto calfAge = [&asked] { return ++asked, 2; };
    for (const char* type : {"MI", "KO", "ML", "XX", ""})
        for (const char* direction : {"OP", "MI", "MIOP", "MLOP", "ML", ""})
            herds.add(1, {u"XX"_s, QLatin1String(type), QLatin1String(direction), 40, true, calfAge});
    QCOMPARE(asked, 0);
    for (int id : {37, 38, 39, 40})
        QVERIFY(!Herds::Counts(herds.tables.mdGT00()).contains(u"%1"_s.arg(id)));
}

QTEST_GUILESS_MAIN(TestWelfare)
#include "test_welfare.moc"
