#pragma once

#include "reports/PreparedReport.h"

#include <QDateTime>

class Table;

// A data link the template may name, and the table it is bound to (none: its
// fields are empty and its data bands print nothing).
struct DataLinkBinding {
    QString name;
    const Table* table = nullptr;
};

// Lays a template out into pages with the bound tables: band heights and
// stretching memos, page breaks, headers reprinted on new pages, groups,
// aggregates, and the total page count filled in at the end.
PreparedReport PrepareReport(const ReportTemplate& report, const std::vector<DataLinkBinding>& links,
                             const QDateTime& printedAt);
