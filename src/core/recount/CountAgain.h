#pragma once

#include "analysis/AgeLimits.h"
#include "analysis/WelfareFlags.h"
#include "core/session/AnimalAnswer.h"
#include "core/tables/WorkingTables.h"

#include <vector>

// Whether each herd table holds, in order, the rows of mdRZ00 whose answers
// name its slot, one answer per row of mdRZ00.
bool RowsMatchAnswers(WorkingTables& tables, const std::vector<AnimalAnswer>& answers);

// Ages the animals of the tables on `date` (in place: age, mother flag, marks)
// and counts them into the group tables, which must hold the catalogue freshly
// built for these limits and ticks. Gives how many were born after the date.
int CountAgain(WorkingTables& tables, const std::vector<AnimalAnswer>& answers, QDate date, const AgeLimits& limits,
               WelfareFlags flags);
