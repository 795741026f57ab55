#pragma once

#include "reports/ReportModel.h"

// The template with one more page, A4 landscape, that carries the page header
// and page footer of the template's first page, widened to the landscape page
// and printed on it. Laid out with the rest, that page is numbered and counted
// with the others (a "Strona 3 z 3" stays true), and the chart is drawn on it.
ReportTemplate WithChartPage(ReportTemplate report);
