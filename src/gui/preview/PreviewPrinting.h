#pragma once

#include "reports/PreparedReport.h"

#include <QPageLayout>

class QPrinter;

// The paper and orientation of a prepared page, as its PDF page has them.
QPageLayout PaperLayout(const PreparedPage& page);

// Full page with no margins, the paper and orientation of the report's first page.
void SetUpPrinter(QPrinter& printer, const PreparedReport& report);

struct PageSpan {
    int first = 0; // 0-based
    int last = -1; // 0-based, inclusive; last < first when there is nothing to print
};

// The pages the print dialog chose: all, a range (0 for either end meaning the
// report's) or the page the preview shows.
PageSpan ChosenPages(const QPrinter& printer, int pageCount, int currentPage);

// Paints the pages one printer page each; the printer makes the copies. Each
// page gets its own orientation when the pages differ. False when the
// printer cannot be started.
bool PrintPages(QPrinter& printer, const PreparedReport& report, PageSpan pages);
