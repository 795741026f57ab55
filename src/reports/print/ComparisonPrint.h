#pragma once

#include "core/tables/Table.h"
#include "reports/print/PrintCommands.h"

class DownloadComparison;
class TdmulmxDataBase_FR3;

// The print of a comparison of two downloads ("Porównanie pobrań.fr3"): the
// comparison copied into tables of its own, since the working tables hold one
// download only. Link 1 reads the animals, link 2 the group counts and link 30,
// in place of mdProducent, the one-row header with the producer and both downloads.
class ComparisonPrint {
public:
    static QString templateName();

    explicit ComparisonPrint(const DownloadComparison& comparison);
    ComparisonPrint(const ComparisonPrint&) = delete;
    ComparisonPrint& operator=(const ComparisonPrint&) = delete;

    // The job binds the report's links to this object's tables, so this object
    // must outlive every run of the job (the preview prepares it again).
    PrintJob job(TdmulmxDataBase_FR3& reports) const;

    const Table& header() const { return header_; }
    const Table& animals() const { return animals_; }
    const Table& groups() const { return groups_; }

private:
    Table header_;
    Table animals_;
    Table groups_;
};
