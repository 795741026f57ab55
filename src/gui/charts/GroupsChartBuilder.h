#pragma once

#include <QChart>

#include <memory>

struct GroupsChartData;

// The window's chart of the groups by herd: a horizontal stacked bar per
// group, in the tables' order from the top, a bar set per herd in the herd's
// colour, each group labelled with its total, the legend at the bottom (on
// the right when the herds are too many for one row).
std::unique_ptr<QChart> MakeGroupsChart(const GroupsChartData& data);

// The chart counts its bars from the bottom, so they hold the groups in
// reverse: the group (index into data.categories) shown by bar `bar`.
int CategoryOfBar(const GroupsChartData& data, int bar);

// What a pointer over a bar's segment tells: the group, the herd and its count.
QString SegmentToolTip(const GroupsChartData& data, int bar, int herd);
