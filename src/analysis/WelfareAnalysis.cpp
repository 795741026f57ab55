#include "analysis/WelfareAnalysis.h"

#include "analysis/GroupCatalogue.h"
#include "core/tables/WorkingTables.h"

#include <QHash>

#include <initializer_list>

namespace {
bool OneOf(const QString& value, std::initializer_list<const char*> codes)
{
    for (const char* code : codes)
        if (value == QLatin1String(code))
            return true;
    return false;
}

bool In(int value, int lowerExclusive, int upperInclusive)
{
    return lowerExclusive < value && value <= upperInclusive;
}

// The mark texts are written into a row for every animal; one shared copy of
// each keeps the tables small and spares a conversion per animal.
const QString& Text(const char* utf8)
{
    static QHash<const char*, QString> texts;
    auto found = texts.find(utf8);
    if (found == texts.end())
        found = texts.insert(utf8, QString::fromUtf8(utf8));
    return *found;
}
} // namespace

struct WelfareAnalysis::Animal {
    const AnimalFacts& facts;
    int slot;
    bool counted;
    bool female() const { return facts.sexCode == QLatin1String("XX"); }
    int age() const { return facts.age; }
};

WelfareAnalysis::WelfareAnalysis(WorkingTables& tables, const AgeLimits& limits, WelfareFlags flags)
    : tables_(tables), limits_(limits), flags_(flags)
{
    rowOfId_.fill(-1);
    int row = 0;
    for (const GroupRow& group : CatalogueRows(limits, flags))
        rowOfId_[static_cast<std::size_t>(group.id)] = row++;
}

void WelfareAnalysis::analyse(const AnimalFacts& facts, int slot)
{
    Animal a{facts, slot, !facts.written};
    if (a.counted)
        return;
    if (flags_.krowMamek)
        blockSucklerCows(a);
    if (flags_.opasow)
        blockFattening(a);
    if (flags_.krowMlecznych)
        blockDairy(a);
    if (!a.counted)
        count(slot, UnaccountedGroupId, Column::Ilosc);
}

void WelfareAnalysis::blockSucklerCows(Animal& a) const
{
    const QString& type = a.facts.useType;
    if (!(type == QLatin1String("MI") || (type == QLatin1String("KO") && a.facts.useDirection == QLatin1String("MI"))))
        return;
    using enum AgeLimit;
    const QString where = Text("Halvarn krów mamek, -");
    const QString d = QStringLiteral("D");
    const auto step = [&](bool condition, int subId, const QString& summaryCode, const QString& herdCode) {
        if (a.counted || !condition)
            return;
        a.counted = true;
        count(a.slot, 1, Column::Ilosc);
        mark(a, summaryCode, herdCode, where);
        sub(a, subId);
    };
    step(a.female() && a.age() > 24, 2, d, d);
    step(a.age() <= 8, 3, d, d);
    step(a.age() <= limits_[HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do], 4, d, d);
    step(In(a.age(), limits_[HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od],
            limits_[HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do]), 5, d, d);
    step(In(a.age(), limits_[HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od], 6), 6, d, d);
    step(a.female() && In(a.age(), 6, 19), 7, QString(), QStringLiteral("DX"));
    step(a.female() && In(a.age(), 19, 24), 8, d, d);
}

void WelfareAnalysis::blockFattening(Animal& a) const
{
    if (a.counted || a.age() > 18 || !OneOf(a.facts.useType, {"ML", "MI", "KO"}) ||
        !OneOf(a.facts.useDirection, {"OP", "MIOP", "MLOP"}))
        return;
    using enum AgeLimit;
    main(a, 10, QStringLiteral("D"), Text("Halvarn opasów, -"));
    const int age = a.age();
    if (age <= limits_[HalvOpasowGrp_Do_150KG_Wiek_Do])
        sub(a, 11);
    if (In(age, limits_[HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od], limits_[HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do]))
        sub(a, 12);
    if (In(age, limits_[HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od], 8))
        sub(a, 13);
    if (In(age, 8, limits_[HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do]))
        sub(a, 14);
    if (age > limits_[HalvOpasowGrp_Ponad_450KG_Wiek_Od])
        sub(a, 15);
}

void WelfareAnalysis::blockDairy(Animal& a) const
{
    const QString& type = a.facts.useType;
    const bool dairyCow = type == QLatin1String("ML") ||
                          (type == QLatin1String("KO") && a.facts.useDirection == QLatin1String("ML"));
    if (!a.counted && a.age() > 24 && a.female() && dairyCow)
        main(a, 17, QStringLiteral("D"), Text("Halvarn krów mlecznych, 24 > Wiek"));
    dairyFattening(a);
    dairyCalves(a);
    dairyCowsAndBulls(a);
    dairySucklerCows(a);
}

void WelfareAnalysis::dairyFattening(Animal& a) const
{
    if (a.counted || !OneOf(a.facts.useType, {"KO", "MI", "ML"}) ||
        !OneOf(a.facts.useDirection, {"OP", "MIOP", "MLOP"}))
        return;
    using enum AgeLimit;
    const QString x = QStringLiteral("X");
    const int age = a.age();
    if (age <= 8) {
        main(a, 19, x, Text("Bydło opasowe do 300 kg, 6 > Wiek <= 8"));
        if (age <= limits_[BydloOpasoweGrp_Do_150KG_Wiek_Do])
            sub(a, 20);
        if (In(age, limits_[BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od], limits_[BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do]))
            sub(a, 21);
        if (In(age, limits_[BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od], 8))
            sub(a, 22);
    } else if (age <= 18) {
        main(a, 23, x, Text("Bydło opasowe ponad 300 kg, 8 > Wiek <= 18"));
        if (In(age, 8, limits_[BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do]))
            sub(a, 24);
        if (age > limits_[BydloOpasoweGrp_Ponad_450KG_Wiek_Od])
            sub(a, 25);
    }
}

void WelfareAnalysis::dairyCalves(Animal& a) const
{
    if (a.counted || a.age() > 6)
        return;
    using enum AgeLimit;
    const int age = a.age();
    main(a, 26, QStringLiteral("X"), Text("Cielęta , Wiek <= 6"));
    if (age <= limits_[CieletaGrp_Do_150KG_Wiek_Do])
        sub(a, 27);
    if (In(age, limits_[CieletaGrp_Od_150KG_Do_220KG_Wiek_Od], limits_[CieletaGrp_Od_150KG_Do_220KG_Wiek_Do]))
        sub(a, 28);
    if (In(age, limits_[CieletaGrp_Ponad_220KG_Wiek_Od], 6))
        sub(a, 29);
    sub(a, a.female() ? 30 : 31);
}

void WelfareAnalysis::dairyCowsAndBulls(Animal& a) const
{
    const QString x = QStringLiteral("X");
    const int age = a.age();
    if (!a.counted && a.female() && In(age, 6, 19))
        main(a, 32, x, Text("Jałówki od 6 do 19, 6 > Wiek <= 19"));
    if (!a.counted && a.female() && In(age, 19, 24))
        main(a, 33, x, Text("Jałówki od 19 do 24, 19 > Wiek <= 24"));
    if (!a.counted && a.female() && age > 24) {
        const QString where = Text("Krowy, 24 > Wiek");
        main(a, 34, x, where);
        if (!OneOf(a.facts.useType, {"KO", "MI", "ML"}) ||
            !OneOf(a.facts.useDirection, {"OP", "MI", "MIOP", "ML", "MLOP"})) {
            sub(a, 34);
            mark(a, QStringLiteral("MD"), QStringLiteral("MD"), where);
        }
    }
    if (!a.counted && In(age, 6, 24))
        main(a, 35, x, Text("Byki, 6 > Wiek <= 24"));
    if (!a.counted && age > 24)
        main(a, 36, x, Text("Buhaje, 24 > Wiek"));
}

// Cows over 24 months are all taken by the steps before, so in practice this
// step never counts; it is kept so the order of steps stays complete.
void WelfareAnalysis::dairySucklerCows(Animal& a) const
{
    if (a.counted || !a.female() || a.age() <= 24)
        return;
    const int calfAge = a.facts.calfAge ? a.facts.calfAge() : 0;
    if (calfAge == 0 || calfAge > 6)
        return;
    const int id = calfAge <= 2 ? 37 : calfAge <= 4 ? 38 : 39;
    const char* captions[] = {"Krowy mamki z cielętami do 150 kg, ", "Krowy mamki z cielętami 150 kg - 220 kg, ",
                              "Krowy mamki z cielętami 220 kg - 300 kg, "};
    const QString where = Text(captions[id - 37]);
    if (OneOf(a.facts.useType, {"KO", "MI"}) && OneOf(a.facts.useDirection, {"OP", "MI", "MIOP", "MLOP"})) {
        main(a, id, QStringLiteral("X"), where);
    } else if (!OneOf(a.facts.useType, {"KO", "MI", "ML"}) ||
               !OneOf(a.facts.useDirection, {"OP", "MI", "MIOP", "ML", "MLOP"})) {
        sub(a, id);
        mark(a, QStringLiteral("MM"), QStringLiteral("MM"), where);
    }
}

void WelfareAnalysis::main(Animal& a, int id, const QString& code, const QString& where) const
{
    a.counted = true;
    count(a.slot, id, Column::Ilosc);
    mark(a, code, code, where);
}

void WelfareAnalysis::sub(const Animal& a, int id) const
{
    count(a.slot, id, Column::IloscPom);
}

void WelfareAnalysis::count(int slot, int id, Column column) const
{
    countIn(tables_.mdGT00(), id, column);
    countIn(tables_.mdGT(slot), id, column);
}

void WelfareAnalysis::countIn(Table& table, int id, Column column) const
{
    const int row = rowOfGroup(table, id);
    if (row < 0)
        return; // the row's block is not ticked
    const int field = static_cast<int>(column);
    table.moveTo(row);
    table.setReadOnly(false);
    table.edit();
    table.setValue(field, AsInteger(table.value(field)) + 1);
    table.post();
    tables_.restoreReadOnly(table);
}

int WelfareAnalysis::rowOfGroup(const Table& table, int id) const
{
    const int expected = rowOfId_[static_cast<std::size_t>(id)];
    if (expected >= 0 && expected < table.recordCount() && table.at(expected, 0) == FieldValue(id))
        return expected;
    for (int row = 0; row < table.recordCount(); ++row)
        if (table.at(row, 0) == FieldValue(id))
            return row;
    return -1;
}

void WelfareAnalysis::mark(const Animal& a, const QString& summaryCode, const QString& herdCode,
                           const QString& where) const
{
    tables_.MarkAnimalReviewed(tables_.mdRZ00(), summaryCode, where);
    tables_.MarkAnimalReviewed(tables_.mdRZ(a.slot), herdCode, where);
}
