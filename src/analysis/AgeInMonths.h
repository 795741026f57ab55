#pragma once

#include "framework/DateTime.h"

// Whole months between two dates: the days between them divided by 30.4375 and
// truncated, plus one, minus that one again when both dates share month and day
// of the month. An animal exactly one year old is therefore 11 months old; that
// is the count the scheme's groups are defined on.
int AgeInMonths(TDateTime birth, TDateTime onDay);
