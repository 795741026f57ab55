#pragma once

#include <QString>

#include <array>

// The five use directions a change notice may set, by the registry's code.
struct UseDirection {
    const char* code;
    const char* name;
};

inline constexpr std::array<UseDirection, 5> UseDirections{{
    {"OP", "Do opasu"},
    {"MI", "Mięsny"},
    {"MIOP", "Mięsny do opasu"},
    {"ML", "Mleczny"},
    {"MLOP", "Mleczny do opasu"},
}};

// The description of a use direction's code ("MI" → "Mięsny"); the code itself when unknown.
inline QString UseDirectionName(const QString& code)
{
    for (const UseDirection& direction : UseDirections)
        if (code == QLatin1String(direction.code))
            return QString::fromUtf8(direction.name);
    return code;
}
