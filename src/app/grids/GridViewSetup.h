#pragma once

#include "app/grids/GridColumns.h"

class QAbstractItemView;
class QHeaderView;

// What every grid view shares: compact rows, whole-row selection, no editing
// through the view, and starting column widths that fit what the columns hold.
void SetUpGridView(QAbstractItemView& view);
void SetUpColumnWidths(QHeaderView& header, const std::vector<GridColumn>& columns);
