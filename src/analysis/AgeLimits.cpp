#include "analysis/AgeLimits.h"

#include "framework/IniFile.h"

using namespace Qt::StringLiterals;

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
        {HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od, "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od", 3},
        {HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do, "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do", 5},
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
    return u"WIEK"_s;
}

AgeLimits AgeLimits::defaults()
{
    AgeLimits limits;
    for (const AgeLimitKey& k : AgeLimitKeys())
        limits.set(k.limit, k.defaultValue);
    return limits;
}

namespace {
constexpr int MostMonths = 600;

// The classes whose lower and upper bounds both have a key.
constexpr std::array<std::pair<AgeLimit, AgeLimit>, 4> BoundedClasses{{
    {AgeLimit::BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od, AgeLimit::BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do},
    {AgeLimit::CieletaGrp_Od_150KG_Do_220KG_Wiek_Od, AgeLimit::CieletaGrp_Od_150KG_Do_220KG_Wiek_Do},
    {AgeLimit::HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od,
     AgeLimit::HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do},
    {AgeLimit::HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od, AgeLimit::HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do},
}};

const AgeLimitKey& KeyOf(AgeLimit limit)
{
    return AgeLimitKeys()[static_cast<std::size_t>(limit)];
}
} // namespace

AgeLimits AgeLimits::read(const IniFile& ini, QStringList* problems)
{
    QStringList found;
    AgeLimits limits;
    for (const AgeLimitKey& k : AgeLimitKeys())
        limits.set(k.limit, ini.readInteger(AgeLimitsSection(), QString::fromLatin1(k.key), k.defaultValue,
                                            {0, MostMonths}, found));
    limits.resetInvertedRanges(found);
    if (problems)
        problems->append(found);
    return limits;
}

AgeLimits AgeLimits::readAsWritten(const IniFile& ini)
{
    AgeLimits limits;
    for (const AgeLimitKey& k : AgeLimitKeys())
        limits.set(k.limit, ini.readInteger(AgeLimitsSection(), QString::fromLatin1(k.key), k.defaultValue));
    return limits;
}

void AgeLimits::resetInvertedRanges(QStringList& problems)
{
    for (const auto& [lower, upper] : BoundedClasses) {
        if ((*this)[lower] <= (*this)[upper])
            continue;
        problems.append(u"Niepoprawny przedział wieku w ustawieniach: [%1] %2=%3 jest większe niż %4=%5; "
                        u"użyto %6 i %7"_s.arg(AgeLimitsSection(), QLatin1String(KeyOf(lower).key))
                            .arg((*this)[lower])
                            .arg(QLatin1String(KeyOf(upper).key))
                            .arg((*this)[upper])
                            .arg(KeyOf(lower).defaultValue)
                            .arg(KeyOf(upper).defaultValue));
        set(lower, KeyOf(lower).defaultValue);
        set(upper, KeyOf(upper).defaultValue);
    }
}

void AgeLimits::write(IniFile& ini) const
{
    for (const AgeLimitKey& k : AgeLimitKeys())
        ini.writeInteger(AgeLimitsSection(), QString::fromLatin1(k.key), (*this)[k.limit]);
}
