#pragma once

#include "reports/BandReport.h"

#include <array>

class WorkingTables;

// The report data module: the one report every print uses and its thirty data
// links, "frxDBDataset1" … "frxDBDataset30". Herd sections go to links 1…20,
// the overall section to 29 and the producer's header to 30.
class TdmulmxDataBase_FR3 {
public:
    static constexpr int LinkCount = 30;
    static constexpr int HerdLinkCount = 20;
    static constexpr int OverallLink = 29;
    static constexpr int ProducerLink = 30;

    TdmulmxDataBase_FR3();

    BandReport frxReport;

    DataLinkBinding& frxDBDataset(int n) { return links_[static_cast<std::size_t>(n - 1)]; }
    const std::array<DataLinkBinding, LinkCount>& links() const { return links_; }

    // Links 1…20 to the empty table and 30 to the producer, so no link keeps a
    // binding of an earlier print.
    void ResetReportLinks(WorkingTables& tables);
    DataLinkBinding* HerdLink(int n);

    // Binds the next herd link to `table` and captions the section "Stado: "
    // + code in its "MV"n memo. The first section of a report without the
    // overall one loses its "Header"n's start on a new page, so the report
    // does not open with a page holding the title alone.
    void AddHerdSection(const Table& table, const QString& herdCode, int& position, bool& headerDone);

    PreparedReport prepare() const;

private:
    std::array<DataLinkBinding, LinkCount> links_;
};
