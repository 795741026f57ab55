#pragma once

#include <QString>
#include <QStringList>

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
    // A missing key gives its default; so does a value that is not a whole
    // number of 0..600 months, and both bounds of a class whose lower bound
    // exceeds its upper one, each with a line in problems.
    static AgeLimits read(const IniFile& ini, QStringList* problems = nullptr);
    // The values as the file holds them, refused ones too, for the user to see and correct.
    static AgeLimits readAsWritten(const IniFile& ini);
    void write(IniFile& ini) const;

    int operator[](AgeLimit limit) const { return values_[static_cast<std::size_t>(limit)]; }
    void set(AgeLimit limit, int value) { values_[static_cast<std::size_t>(limit)] = value; }

private:
    void resetInvertedRanges(QStringList& problems);

    std::array<int, AgeLimitCount> values_{};
};
