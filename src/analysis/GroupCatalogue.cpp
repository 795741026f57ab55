#include "analysis/GroupCatalogue.h"

#include "core/tables/WorkingTables.h"

namespace {
QString UpTo(int upper)
{
    return QStringLiteral("Wiek <= ") + QString::number(upper);
}

QString Between(int lower, int upper)
{
    return QString::number(lower) + QStringLiteral(" > Wiek <= ") + QString::number(upper);
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
    const QString dash = QStringLiteral("-");
    const QString over24 = QStringLiteral("24 > Wiek");
    const QString to6 = UpTo(6);
    using enum GroupBlock;
    const RowText all[] = {
        {1, SucklerCows, "Halvarn krów mamek", dash},
        {2, SucklerCows, "  - mamki", over24},
        {3, SucklerCows, "  - Opasy do 300kg", none},
        {4, SucklerCows, "  - Cielęta do 150kg", r.mamekCalvesTo150},
        {5, SucklerCows, "  - Cieleta od 150kg do 220kg", r.mamekCalves150To220},
        {6, SucklerCows, "  - Cieleta powyżej 220kg", r.mamekCalvesOver220},
        {7, SucklerCows, "  - Jałówki od 6 do 19", Between(6, 19)},
        {8, SucklerCows, "  - Jałówki od 19 do 24", Between(19, 24)},
        {9, SucklerCows, "", none},
        {10, Fattening, "Halvarn opasów", dash},
        {11, Fattening, "  - waga <= 150 kg", r.opasowTo150},
        {12, Fattening, "  - 150 kg > waga <= 220 kg", r.opasow150To220},
        {13, Fattening, "  - 220 kg > waga <= 300 kg", r.opasow220To300},
        {14, Fattening, "  - 300 kg > waga <= 450 kg", r.opasow300To450},
        {15, Fattening, "  - 450 kg > waga", r.opasowOver450},
        {16, Fattening, "", none},
        {17, Dairy, "Halvarn krów mlecznych", over24},
        {18, Dairy, "", none},
        {19, Dairy, "Bydło opasowe do 300 kg", Between(6, 8)},
        {20, Dairy, "  - waga <= 150 kg", r.bydloTo150},
        {21, Dairy, "  - 150 kg > waga <= 220 kg", r.bydlo150To220},
        {22, Dairy, "  - 220 kg > waga <= 300 kg", r.bydlo220To300},
        {23, Dairy, "Bydło opasowe ponad 300 kg", Between(8, 18)},
        {24, Dairy, "  - 300 kg > waga <= 450 kg", r.bydlo300To450},
        {25, Dairy, "  - 450 kg > waga", r.bydloOver450},
        {26, Dairy, "Cielęta ", to6},
        {27, Dairy, "  - Cielęta do 150kg", r.calvesTo150},
        {28, Dairy, "  - Cieleta od 150kg do 220kg", r.calves150To220},
        {29, Dairy, "  - Cieleta powyżej 220kg", r.calvesOver220},
        {30, Dairy, "  - Cielęta (samice)", to6},
        {31, Dairy, "  - Cielęta (samce)", to6},
        {32, Dairy, "Jałówki od 6 do 19", Between(6, 19)},
        {33, Dairy, "Jałówki od 19 do 24", Between(19, 24)},
        {34, Dairy, "Krowy", over24},
        {35, Dairy, "Byki", Between(6, 24)},
        {36, Dairy, "Buhaje", over24},
        {37, Dairy, "Krowy mamki z cielętami do 150 kg", none},
        {38, Dairy, "Krowy mamki z cielętami 150 kg - 220 kg", none},
        {39, Dairy, "Krowy mamki z cielętami 220 kg - 300 kg", none},
        {40, Dairy, "NIE ROZLICZONE", none},
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
    const QString herd = QStringLiteral("%1").arg(1, 3, 10, QLatin1Char('0'));
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
