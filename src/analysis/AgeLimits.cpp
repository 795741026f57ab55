#include "analysis/AgeLimits.h"

#include "framework/IniFile.h"

const std::array<AgeLimitKey, AgeLimitCount>& AgeLimitKeys()
{
    using enum AgeLimit;
    static const std::array<AgeLimitKey, AgeLimitCount> keys{{
        {BydloOpasoweGrp_Do_150KG_Wiek_Do, "BydloOpasoweGrp_Do_150KG_Wiek_Do", 3},
        {BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od, "BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od", 3},
        {BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do, "BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do", 4},
        {BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od, "BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od", 4},
        {BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do, "BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do", 10},
        {BydloOpasoweGrp_Ponad_450KG_Wiek_Od, "BydloOpasoweGrp_Ponad_450KG_Wiek_Od", 10},
        {CieletaGrp_Do_150KG_Wiek_Do, "CieletaGrp_Do_150KG_Wiek_Do", 3},
        {CieletaGrp_Od_150KG_Do_220KG_Wiek_Od, "CieletaGrp_Od_150KG_Do_220KG_Wiek_Od", 3},
        {CieletaGrp_Od_150KG_Do_220KG_Wiek_Do, "CieletaGrp_Od_150KG_Do_220KG_Wiek_Do", 5},
        {CieletaGrp_Ponad_220KG_Wiek_Od, "CieletaGrp_Ponad_220KG_Wiek_Od", 5},
        {HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do, "HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do", 3},
        {HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od,
         "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od", 3},
        {HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do,
         "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do", 5},
        {HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od, "HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od", 5},
        {HalvOpasowGrp_Do_150KG_Wiek_Do, "HalvOpasowGrp_Do_150KG_Wiek_Do", 3},
        {HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od, "HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od", 3},
        {HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do, "HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do", 4},
        {HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od, "HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od", 4},
        {HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do, "HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do", 10},
        {HalvOpasowGrp_Ponad_450KG_Wiek_Od, "HalvOpasowGrp_Ponad_450KG_Wiek_Od", 10},
    }};
    return keys;
}

QString AgeLimitsSection()
{
    return QStringLiteral("WIEK");
}

AgeLimits AgeLimits::defaults()
{
    AgeLimits limits;
    for (const AgeLimitKey& k : AgeLimitKeys())
        limits.set(k.limit, k.defaultValue);
    return limits;
}

AgeLimits AgeLimits::read(const IniFile& ini)
{
    AgeLimits limits;
    for (const AgeLimitKey& k : AgeLimitKeys())
        limits.set(k.limit, ini.readInteger(AgeLimitsSection(), QString::fromLatin1(k.key), k.defaultValue));
    return limits;
}

void AgeLimits::write(IniFile& ini) const
{
    for (const AgeLimitKey& k : AgeLimitKeys())
        ini.writeInteger(AgeLimitsSection(), QString::fromLatin1(k.key), (*this)[k.limit]);
}
