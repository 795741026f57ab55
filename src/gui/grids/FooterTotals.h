#pragma once

#include "core/tables/Table.h"
#include "gui/grids/GridColumns.h"

#include <QStringList>

#include <span>

// The footer texts, one per cell: a count of the records, or the sum of the
// field's values written as a whole number (format "0").
QStringList FooterTexts(const Table& table, const std::vector<FooterCell>& cells, std::span<const int> records);
QStringList FooterTexts(const Table& table,
                        const std::vector<FooterCell>& cells); // over every record
