#pragma once

#include "gui/grids/GridColumns.h"

class QAbstractItemView;
class QFont;
class QHeaderView;
class Table;

// What every grid view shares: compact rows, whole-row selection, no editing
// through the view, and starting column widths that fit what the columns hold.
void SetUpGridView(QAbstractItemView& view);
void SetUpColumnWidths(QHeaderView& header, const std::vector<GridColumn>& columns);

// Widens each column to show its caption beside a sort mark and the widest of
// its values in `valueFont` (a marked row's bold font is wider than the plain
// one); no column gets narrower than its starting width.
void FitColumnsToContent(QHeaderView& header, const std::vector<GridColumn>& columns, const Table& table,
                         const QFont& valueFont);
