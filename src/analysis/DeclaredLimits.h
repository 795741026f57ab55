#pragma once

#include <QString>
#include <QStringList>

#include <array>

class Table;

// The maximum numbers of animals a producer declared for the scheme, in the
// producer list's order. Zero means nothing was declared for that group.
enum class DeclaredGroup {
    SucklerCows,
    FatteningTo150,
    Fattening150To220,
    Fattening220To300,
    Fattening300To450,
    FatteningOver450,
    DairyCows,
};
inline constexpr int DeclaredGroupCount = 7;
using DeclaredLimits = std::array<int, DeclaredGroupCount>;

// The group catalogue's row that a declared number limits.
int DeclaredGroupRow(DeclaredGroup group);
// How the producer list names the group: "krów mamek", "opasów > 150 < 220", …
QString DeclaredGroupName(DeclaredGroup group);

// Writes each declared number into the "Limit" field of its row of the overall
// group table and returns one line "Przekroczono zadeklarowaną liczbę: …" for
// every row whose count is above it. Rows of kinds not ticked are not there.
QStringList ApplyDeclaredLimits(Table& overallGroups, const DeclaredLimits& limits);

// Rows of a group table whose count is above their "Limit".
int CountOverLimit(const Table& groups);
// Whether the row's count is above its "Limit"; false for a table without limits.
bool OverLimit(const Table& groups, int row);
