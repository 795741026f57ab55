#pragma once

class HalvarnSession;

// Ends a counting on the session's reference date with the lines that depend on
// that date: the animals born after it, and each group above the number the
// producer declared (also written into the "Limit" field of mdGT00). The lines
// before them stay true on any date, so a recount replaces only these.
void AppendCountingLines(HalvarnSession& session, int bornAfterReference);
