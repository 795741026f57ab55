#pragma once

#include <QString>

#include <array>

class IniFile;

// The twenty age limits (months) of section "WIEK" that bound the weight classes.
// "_Wiek_Od" limits are exclusive lower bounds, "_Wiek_Do" inclusive upper ones.
enum class AgeLimit {
    BydloOpasoweGrp_Do_150KG_Wiek_Do,
    BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od,
    BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do,
    BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od,
    BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do,
    BydloOpasoweGrp_Ponad_450KG_Wiek_Od,
    CieletaGrp_Do_150KG_Wiek_Do,
    CieletaGrp_Od_150KG_Do_220KG_Wiek_Od,
    CieletaGrp_Od_150KG_Do_220KG_Wiek_Do,
    CieletaGrp_Ponad_220KG_Wiek_Od,
    HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do,
    HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od,
    HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do,
    HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od,
    HalvOpasowGrp_Do_150KG_Wiek_Do,
    HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od,
    HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do,
    HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od,
    HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do,
    HalvOpasowGrp_Ponad_450KG_Wiek_Od,
};

inline constexpr int AgeLimitCount = 20;

struct AgeLimitKey {
    AgeLimit limit;
    const char* key;
    int defaultValue;
};

const std::array<AgeLimitKey, AgeLimitCount>& AgeLimitKeys();
QString AgeLimitsSection(); // "WIEK"

class AgeLimits {
public:
    static AgeLimits defaults();
    static AgeLimits read(const IniFile& ini); // a missing key gives its default
    void write(IniFile& ini) const;

    int operator[](AgeLimit limit) const { return values_[static_cast<std::size_t>(limit)]; }
    void set(AgeLimit limit, int value) { values_[static_cast<std::size_t>(limit)] = value; }

private:
    std::array<int, AgeLimitCount> values_{};
};
