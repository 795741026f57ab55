#pragma once

#include "reports/ReportModel.h"

#include <memory>
#include <vector>

// A data band with what belongs to it by position: the header right above it,
// the group headers between (outer first), the group footers below it (inner
// first), the footer after them, and the detail bands printed for each row.
struct DataSection {
    const ReportBand* band = nullptr;
    const ReportBand* header = nullptr;
    const ReportBand* footer = nullptr;
    std::vector<const ReportBand*> groupHeaders;
    std::vector<const ReportBand*> groupFooters;
    std::vector<std::unique_ptr<DataSection>> details;
};

// A report page's bands sorted into their roles.
struct BandTree {
    const ReportBand* title = nullptr;
    const ReportBand* summary = nullptr;
    const ReportBand* pageHeader = nullptr;
    const ReportBand* pageFooter = nullptr;
    const ReportBand* columnHeader = nullptr;
    const ReportBand* columnFooter = nullptr;
    std::vector<const ReportBand*> overlays;
    std::vector<std::unique_ptr<DataSection>> sections; // top-level data bands in Top order

    // The band printed right after `band` (its Child), if any.
    const ReportBand* childOf(const ReportBand& band) const;

    static BandTree build(const ReportPage& page);

private:
    std::vector<const ReportBand*> children_;
};
