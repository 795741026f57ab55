#pragma once

#include <QString>

#include <vector>

using namespace Qt::StringLiterals;

// What an age-bound edit of a parameter row does.
enum class BoundEdit {
    None,        // the class has no such bound: disabled and empty
    Key,         // loaded from and saved to the "WIEK" key named by the edit
    DisplayOnly, // enabled, but never loaded nor saved
};

// One technological class in the "Przedziały wiekowe" group.
// Its edits are named stem + "_Wiek_Od" and stem + "_Wiek_Do"; for a bound that
// has a key, that name is the key in section "WIEK".
struct AgeLimitRow {
    QString caption;
    QString stem;
    BoundEdit lower;
    BoundEdit upper;

    QString lowerName() const { return stem + u"_Wiek_Od"_s; }
    QString upperName() const { return stem + u"_Wiek_Do"_s; }
};

using AgeLimitFamily = std::vector<AgeLimitRow>;

// The families in the order the dialog shows them: fattening cattle, calves,
// cow-calf welfare, fattening welfare.
const std::vector<AgeLimitFamily>& AgeLimitFamilies();
