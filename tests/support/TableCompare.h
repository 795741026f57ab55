#pragma once

#include "core/session/HalvarnSession.h"

#include <QString>

using namespace Qt::StringLiterals;

// The first difference between two sessions' working tables and herd slots,
// as "table row field: a / b"; empty when they hold the same values.
inline QString FirstDifference(HalvarnSession& a, HalvarnSession& b)
{
    const std::vector<Table*> left = a.tables().all();
    const std::vector<Table*> right = b.tables().all();
    for (std::size_t t = 0; t < left.size(); ++t) {
        const Table& x = *left[t];
        const Table& y = *right[t];
        if (x.recordCount() != y.recordCount())
            return u"%1: %2 / %3 wierszy"_s.arg(x.name()).arg(x.recordCount()).arg(y.recordCount());
        for (int row = 0; row < x.recordCount(); ++row)
            for (int field = 0; field < x.fieldCount(); ++field)
                if (!(x.at(row, field) == y.at(row, field)))
                    return u"%1 %2 %3: %4 / %5"_s.arg(x.name()).arg(row).arg(
                        x.fields()[static_cast<std::size_t>(field)].name, DisplayText(x.at(row, field)),
                        DisplayText(y.at(row, field)));
    }
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const THerdSlot& x = a.tables().HerdSlots[static_cast<std::size_t>(slot)];
        const THerdSlot& y = b.tables().HerdSlots[static_cast<std::size_t>(slot)];
        if (x.Code != y.Code || x.Index != y.Index || x.Visible != y.Visible || x.Incomplete != y.Incomplete)
            return u"slot %1: %2 / %3"_s.arg(slot).arg(x.Code, y.Code);
    }
    return {};
}
