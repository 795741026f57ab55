#include "analysis/GroupCatalogue.h"

#include "core/tables/WorkingTables.h"

using namespace Qt::StringLiterals;

namespace {
QString UpTo(int upper)
{
    return u"Wiek <= "_s + QString::number(upper);
}

QString Between(int lower, int upper)
{
    return QString::number(lower) + u" > Wiek <= "_s + QString::number(upper);
}

struct RowText {
    int id;
    GroupBlock block;
    const char* caption; // UTF-8
    QString range;
};
} // namespace

GroupRangeTexts::GroupRangeTexts(const AgeLimits& l)
{
    using enum AgeLimit;
    mamekCalvesTo150 = UpTo(l[HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do]);
    mamekCalves150To220 = Between(l[HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od],
                                  l[HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do]);
    mamekCalvesOver220 = Between(l[HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od], 6);
    opasowTo150 = UpTo(l[HalvOpasowGrp_Do_150KG_Wiek_Do]);
    opasow150To220 = Between(l[HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od], l[HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do]);
    opasow220To300 = Between(l[HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od], 8);
    opasow300To450 = Between(8, l[HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do]);
    opasowOver450 = Between(l[HalvOpasowGrp_Ponad_450KG_Wiek_Od], 18);
    bydloTo150 = UpTo(l[BydloOpasoweGrp_Do_150KG_Wiek_Do]);
    bydlo150To220 = Between(l[BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od], l[BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do]);
    bydlo220To300 = Between(l[BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od], 8);
    bydlo300To450 = Between(8, l[BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do]);
    bydloOver450 = Between(l[BydloOpasoweGrp_Ponad_450KG_Wiek_Od], 18);
    calvesTo150 = UpTo(l[CieletaGrp_Do_150KG_Wiek_Do]);
    calves150To220 = Between(l[CieletaGrp_Od_150KG_Do_220KG_Wiek_Od], l[CieletaGrp_Od_150KG_Do_220KG_Wiek_Do]);
    calvesOver220 = Between(l[CieletaGrp_Ponad_220KG_Wiek_Od], 6);
}

std::vector<GroupRow> CatalogueRows(const AgeLimits& limits, WelfareFlags flags)
{
    const GroupRangeTexts r(limits);
    const QString none;
    const QString dash = u"-"_s;
    const QString over24 = u"24 > Wiek"_s;
    const QString to6 = UpTo(6);
    using enum GroupBlock;
    const RowText all[] = {
        {GroupId::SucklerCows, SucklerCows, "Halvarn krów mamek", dash},
        {GroupId::SucklerMothers, SucklerCows, "  - mamki", over24},
        {GroupId::SucklerFattenersTo300, SucklerCows, "  - Opasy do 300kg", none},
        {GroupId::SucklerCalvesTo150, SucklerCows, "  - Cielęta do 150kg", r.mamekCalvesTo150},
        {GroupId::SucklerCalves150To220, SucklerCows, "  - Cieleta od 150kg do 220kg", r.mamekCalves150To220},
        {GroupId::SucklerCalvesOver220, SucklerCows, "  - Cieleta powyżej 220kg", r.mamekCalvesOver220},
        {GroupId::SucklerHeifers6To19, SucklerCows, "  - Jałówki od 6 do 19", Between(6, 19)},
        {GroupId::SucklerHeifers19To24, SucklerCows, "  - Jałówki od 19 do 24", Between(19, 24)},
        {GroupId::SucklerBlank, SucklerCows, "", none},
        {GroupId::Fattening, Fattening, "Halvarn opasów", dash},
        {GroupId::FatteningTo150, Fattening, "  - waga <= 150 kg", r.opasowTo150},
        {GroupId::Fattening150To220, Fattening, "  - 150 kg > waga <= 220 kg", r.opasow150To220},
        {GroupId::Fattening220To300, Fattening, "  - 220 kg > waga <= 300 kg", r.opasow220To300},
        {GroupId::Fattening300To450, Fattening, "  - 300 kg > waga <= 450 kg", r.opasow300To450},
        {GroupId::FatteningOver450, Fattening, "  - 450 kg > waga", r.opasowOver450},
        {GroupId::FatteningBlank, Fattening, "", none},
        {GroupId::DairyCows, Dairy, "Halvarn krów mlecznych", over24},
        {GroupId::DairyBlank, Dairy, "", none},
        {GroupId::BeefTo300, Dairy, "Bydło opasowe do 300 kg", Between(6, 8)},
        {GroupId::BeefTo150, Dairy, "  - waga <= 150 kg", r.bydloTo150},
        {GroupId::Beef150To220, Dairy, "  - 150 kg > waga <= 220 kg", r.bydlo150To220},
        {GroupId::Beef220To300, Dairy, "  - 220 kg > waga <= 300 kg", r.bydlo220To300},
        {GroupId::BeefOver300, Dairy, "Bydło opasowe ponad 300 kg", Between(8, 18)},
        {GroupId::Beef300To450, Dairy, "  - 300 kg > waga <= 450 kg", r.bydlo300To450},
        {GroupId::BeefOver450, Dairy, "  - 450 kg > waga", r.bydloOver450},
        {GroupId::Calves, Dairy, "Cielęta ", to6},
        {GroupId::CalvesTo150, Dairy, "  - Cielęta do 150kg", r.calvesTo150},
        {GroupId::Calves150To220, Dairy, "  - Cieleta od 150kg do 220kg", r.calves150To220},
        {GroupId::CalvesOver220, Dairy, "  - Cieleta powyżej 220kg", r.calvesOver220},
        {GroupId::FemaleCalves, Dairy, "  - Cielęta (samice)", to6},
        {GroupId::MaleCalves, Dairy, "  - Cielęta (samce)", to6},
        {GroupId::Heifers6To19, Dairy, "Jałówki od 6 do 19", Between(6, 19)},
        {GroupId::Heifers19To24, Dairy, "Jałówki od 19 do 24", Between(19, 24)},
        {GroupId::Cows, Dairy, "Krowy", over24},
        {GroupId::Bulls, Dairy, "Byki", Between(6, 24)},
        {GroupId::BreedingBulls, Dairy, "Buhaje", over24},
        {GroupId::CowsWithCalvesTo150, Dairy, "Krowy mamki z cielętami do 150 kg", none},
        {GroupId::CowsWithCalves150To220, Dairy, "Krowy mamki z cielętami 150 kg - 220 kg", none},
        {GroupId::CowsWithCalves220To300, Dairy, "Krowy mamki z cielętami 220 kg - 300 kg", none},
        {GroupId::Unaccounted, Dairy, "NIE ROZLICZONE", none},
    };
    const auto ticked = [flags](GroupBlock block) {
        return block == SucklerCows ? flags.krowMamek : block == Fattening ? flags.opasow : flags.krowMlecznych;
    };
    std::vector<GroupRow> rows;
    for (const RowText& row : all)
        if (ticked(row.block))
            rows.push_back({row.id, row.block, QString::fromUtf8(row.caption), row.range});
    return rows;
}

void RebuildGroupCatalogue(WorkingTables& tables, const AgeLimits& limits, WelfareFlags flags)
{
    const std::vector<GroupRow> rows = CatalogueRows(limits, flags);
    const QString herd = u"%1"_s.arg(1, 3, 10, QLatin1Char('0'));
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        Table& table = tables.mdGT(slot);
        table.disableControls();
        table.setReadOnly(false);
        for (const GroupRow& row : rows) {
            table.append();
            table.setValue(0, row.id);
            table.setValue(1, row.caption);
            table.setValue(2, row.ageRange);
            table.setValue(6, herd);
            table.post();
        }
        tables.restoreReadOnly(table);
        table.enableControls();
    }
}

int GroupRowCount(const Table& groups, int row)
{
    return AsInteger(groups.at(row, groups.requireField(u"Ilosc"))) +
           AsInteger(groups.at(row, groups.requireField(u"IloscPom")));
}
