#pragma once

#include "core/tables/Table.h"

#include <QDate>

class HalvarnSession;

// "Lista kontrolna" for an on-farm inspection: every animal of the chosen herds
// with its age and technological group on the control date and whether it was
// born on the farm (no arrival date at the holding, or one equal to the birth
// date) or bought in, sorted by the last three digits of the ear tag; and the
// totals per group and per origin. The loaded data is not changed: the
// animals are counted again on the control date in tables of the list's own.
class ControlList {
public:
    ControlList();

    // herd: "ALL" or "000" for every herd, else a herd code.
    void fill(HalvarnSession& session, QDate controlDate, const QString& herd);

    const Table& animals() const { return animals_; } // link 1
    const Table& totals() const { return totals_; }   // link 2; its rows carry the control date and herds

    static QString templateName(); // "Lista kontrolna.fr3"

private:
    Table animals_;
    Table totals_;
};
