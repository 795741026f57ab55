#include "gui/dialogs/AgeLimitRows.h"

namespace {
AgeLimitRow Row(const char* caption, const char* stem, BoundEdit lower, BoundEdit upper)
{
    return {QString::fromUtf8(caption), QString::fromLatin1(stem), lower, upper};
}

// The 220-300 kg and 300-450 kg classes form one age band split only by weight,
// so the bound between them has no key of its own.
AgeLimitFamily FatteningCattle()
{
    using enum BoundEdit;
    return {
        Row("Bydlo opasowe waga  <= 150 kg", "BydloOpasoweGrp_Do_150KG", None, Key),
        Row("Bydlo opasowe 150 kg > waga <= 220 kg", "BydloOpasoweGrp_Od_150KG_Do_220KG", Key, Key),
        Row("Bydlo opasowe 220 kg > waga <= 300 kg", "BydloOpasoweGrp_Od_220KG_Do_300KG", Key, None),
        Row("Bydlo opasowe 300 kg > waga <= 450 kg", "BydloOpasoweGrp_Od_300KG_Do_450KG", None, Key),
        Row("Bydlo opasowe 450 kg > waga", "BydloOpasoweGrp_Ponad_450KG", Key, None),
    };
}

AgeLimitFamily Calves()
{
    using enum BoundEdit;
    return {
        Row("Cielęta do 150kg", "CieletaGrp_Do_150KG", None, Key),
        Row("Cieleta od 150kg do 220kg", "CieletaGrp_Od_150KG_Do_220KG", Key, Key),
        Row("Cieleta powyżej 220kg", "CieletaGrp_Ponad_220KG", Key, None),
    };
}

// "Opasy do 300kg" comes first, as in the group catalogue; no limit is configured for it.
AgeLimitFamily CowCalfWelfare()
{
    using enum BoundEdit;
    return {
        Row("Halvarn krów mamek - Opasy do 300kg", "HalvKrowMamekGrp_Opasy_Do_300KG", None, DisplayOnly),
        Row("Halvarn krów mamek - Cielęta do 150kg", "HalvKrowMamekGrp_Cieleta_Do_150KG", None, Key),
        Row("Halvarn krów mamek - Cieleta od 150kg do 220kg", "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG", Key, Key),
        Row("Halvarn krów mamek - Cieleta powyżej 220kg", "HalvKrowMamekGrp_Cieleta_Ponad_220KG", Key, None),
    };
}

AgeLimitFamily FatteningWelfare()
{
    using enum BoundEdit;
    return {
        Row("Halvarn opasów: waga  <= 150 kg", "HalvOpasowGrp_Do_150KG", None, Key),
        Row("Halvarn opasów 150 kg > waga <= 220 kg", "HalvOpasowGrp_Od_150KG_Do_220KG", Key, Key),
        Row("Halvarn opasów 220 kg > waga <= 300 kg", "HalvOpasowGrp_Od_220KG_Do_300KG", Key, None),
        Row("Halvarn opasów 300 kg > waga <= 450 kg", "HalvOpasowGrp_Od_300KG_Do_450KG", None, Key),
        Row("Halvarn opasów 450 kg > waga", "HalvOpasowGrp_Ponad_450KG", Key, None),
    };
}
} // namespace

const std::vector<AgeLimitFamily>& AgeLimitFamilies()
{
    static const std::vector<AgeLimitFamily> families{FatteningCattle(), Calves(), CowCalfWelfare(),
                                                      FatteningWelfare()};
    return families;
}
