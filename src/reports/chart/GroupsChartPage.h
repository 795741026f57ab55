#pragma once

#include "reports/PreparedReport.h"

struct GroupsChartData;

// "Wykres grup technologicznych": a bar per group, its segments the herds in
// their colours, the total at the bar's end, a value axis and a legend, all as
// plain page items, so the preview, the printer and the PDF draw it as any page.
QString GroupsChartTitle();

// Draws the chart on page `page` of the report, in the room the page's items
// leave between its top and its bottom half (its page header and footer).
void DrawGroupsChart(PreparedReport& report, int page, const GroupsChartData& data);

// Appends an A4 landscape page with the chart; nothing when there is nothing to
// chart. Tells whether it appended the page.
bool AppendGroupsChartPage(PreparedReport& report, const GroupsChartData& data);
