#pragma once

#include <vector>

class Table;
class XlsWorksheet;

// The three sheet layouts. Each writes the title row, one row per record from
// row 2 on, and the closing row. Records that would not fit on a sheet raise
// XlsError before any cell is set.
void WriteSummarySheet(XlsWorksheet& sheet, const Table& summary, const std::vector<int>& rows);
void WriteHerdAnimalsSheet(XlsWorksheet& sheet, Table& animals);
void WriteHerdGroupsSheet(XlsWorksheet& sheet, Table& groups);
