#include "analysis/WelfareAnalysis.h"

#include "analysis/GroupCatalogue.h"
#include "core/tables/WorkingTables.h"

#include <initializer_list>

using namespace Qt::StringLiterals;

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
        count(slot, GroupId::Unaccounted, Column::Ilosc);
}

void WelfareAnalysis::blockSucklerCows(Animal& a) const
{
    const QString& type = a.facts.useType;
    if (!(type == QLatin1String("MI") || (type == QLatin1String("KO") && a.facts.useDirection == QLatin1String("MI"))))
        return;
    using enum AgeLimit;
    const QString where = u"Halvarn krów mamek, -"_s;
    const QString d = u"D"_s;
    const auto step = [&](bool condition, int subId, const QString& summaryCode, const QString& herdCode) {
        if (a.counted || !condition)
            return;
        a.counted = true;
        count(a.slot, GroupId::SucklerCows, Column::Ilosc);
        mark(a, summaryCode, herdCode, where);
        sub(a, subId);
    };
    step(a.female() && a.age() > 24, GroupId::SucklerMothers, d, d);
    step(a.age() <= 8, GroupId::SucklerFattenersTo300, d, d);
    step(a.age() <= limits_[HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do], GroupId::SucklerCalvesTo150, d, d);
    step(In(a.age(), limits_[HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od],
            limits_[HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do]),
         GroupId::SucklerCalves150To220, d, d);
    step(In(a.age(), limits_[HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od], 6), GroupId::SucklerCalvesOver220, d, d);
    step(a.female() && In(a.age(), 6, 19), GroupId::SucklerHeifers6To19, QString(), u"DX"_s);
    step(a.female() && In(a.age(), 19, 24), GroupId::SucklerHeifers19To24, d, d);
}

void WelfareAnalysis::blockFattening(Animal& a) const
{
    if (a.counted || a.age() > 18 || !OneOf(a.facts.useType, {"ML", "MI", "KO"}) ||
        !OneOf(a.facts.useDirection, {"OP", "MIOP", "MLOP"}))
        return;
    using enum AgeLimit;
    main(a, GroupId::Fattening, u"D"_s, u"Halvarn opasów, -"_s);
    const int age = a.age();
    if (age <= limits_[HalvOpasowGrp_Do_150KG_Wiek_Do])
        sub(a, GroupId::FatteningTo150);
    if (In(age, limits_[HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od], limits_[HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do]))
        sub(a, GroupId::Fattening150To220);
    if (In(age, limits_[HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od], 8))
        sub(a, GroupId::Fattening220To300);
    if (In(age, 8, limits_[HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do]))
        sub(a, GroupId::Fattening300To450);
    if (age > limits_[HalvOpasowGrp_Ponad_450KG_Wiek_Od])
        sub(a, GroupId::FatteningOver450);
}

void WelfareAnalysis::blockDairy(Animal& a) const
{
    const QString& type = a.facts.useType;
    const bool dairyCow =
        type == QLatin1String("ML") || (type == QLatin1String("KO") && a.facts.useDirection == QLatin1String("ML"));
    if (!a.counted && a.age() > 24 && a.female() && dairyCow)
        main(a, GroupId::DairyCows, u"D"_s, u"Halvarn krów mlecznych, 24 > Wiek"_s);
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
    const QString x = u"X"_s;
    const int age = a.age();
    if (age <= 8) {
        main(a, GroupId::BeefTo300, x, u"Bydło opasowe do 300 kg, 6 > Wiek <= 8"_s);
        if (age <= limits_[BydloOpasoweGrp_Do_150KG_Wiek_Do])
            sub(a, GroupId::BeefTo150);
        if (In(age, limits_[BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od],
               limits_[BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do]))
            sub(a, GroupId::Beef150To220);
        if (In(age, limits_[BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od], 8))
            sub(a, GroupId::Beef220To300);
    } else if (age <= 18) {
        main(a, GroupId::BeefOver300, x, u"Bydło opasowe ponad 300 kg, 8 > Wiek <= 18"_s);
        if (In(age, 8, limits_[BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do]))
            sub(a, GroupId::Beef300To450);
        if (age > limits_[BydloOpasoweGrp_Ponad_450KG_Wiek_Od])
            sub(a, GroupId::BeefOver450);
    }
}

void WelfareAnalysis::dairyCalves(Animal& a) const
{
    if (a.counted || a.age() > 6)
        return;
    using enum AgeLimit;
    const int age = a.age();
    main(a, GroupId::Calves, u"X"_s, u"Cielęta , Wiek <= 6"_s);
    if (age <= limits_[CieletaGrp_Do_150KG_Wiek_Do])
        sub(a, GroupId::CalvesTo150);
    if (In(age, limits_[CieletaGrp_Od_150KG_Do_220KG_Wiek_Od], limits_[CieletaGrp_Od_150KG_Do_220KG_Wiek_Do]))
        sub(a, GroupId::Calves150To220);
    if (In(age, limits_[CieletaGrp_Ponad_220KG_Wiek_Od], 6))
        sub(a, GroupId::CalvesOver220);
    sub(a, a.female() ? GroupId::FemaleCalves : GroupId::MaleCalves);
}

void WelfareAnalysis::dairyCowsAndBulls(Animal& a) const
{
    const QString x = u"X"_s;
    const int age = a.age();
    if (!a.counted && a.female() && In(age, 6, 19))
        main(a, GroupId::Heifers6To19, x, u"Jałówki od 6 do 19, 6 > Wiek <= 19"_s);
    if (!a.counted && a.female() && In(age, 19, 24))
        main(a, GroupId::Heifers19To24, x, u"Jałówki od 19 do 24, 19 > Wiek <= 24"_s);
    if (!a.counted && a.female() && age > 24) {
        const QString where = u"Krowy, 24 > Wiek"_s;
        main(a, GroupId::Cows, x, where);
        if (!OneOf(a.facts.useType, {"KO", "MI", "ML"}) ||
            !OneOf(a.facts.useDirection, {"OP", "MI", "MIOP", "ML", "MLOP"})) {
            sub(a, GroupId::Cows);
            mark(a, u"MD"_s, u"MD"_s, where);
        }
    }
    if (!a.counted && In(age, 6, 24))
        main(a, GroupId::Bulls, x, u"Byki, 6 > Wiek <= 24"_s);
    if (!a.counted && age > 24)
        main(a, GroupId::BreedingBulls, x, u"Buhaje, 24 > Wiek"_s);
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
    const int id = calfAge <= 2   ? GroupId::CowsWithCalvesTo150
                   : calfAge <= 4 ? GroupId::CowsWithCalves150To220
                                  : GroupId::CowsWithCalves220To300;
    const QString captions[] = {u"Krowy mamki z cielętami do 150 kg, "_s,
                                u"Krowy mamki z cielętami 150 kg - 220 kg, "_s,
                                u"Krowy mamki z cielętami 220 kg - 300 kg, "_s};
    const QString where = captions[id - GroupId::CowsWithCalvesTo150];
    if (OneOf(a.facts.useType, {"KO", "MI"}) && OneOf(a.facts.useDirection, {"OP", "MI", "MIOP", "MLOP"})) {
        main(a, id, u"X"_s, where);
    } else if (!OneOf(a.facts.useType, {"KO", "MI", "ML"}) ||
               !OneOf(a.facts.useDirection, {"OP", "MI", "MIOP", "ML", "MLOP"})) {
        sub(a, id);
        mark(a, u"MM"_s, u"MM"_s, where);
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
