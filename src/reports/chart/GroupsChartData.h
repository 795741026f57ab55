#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

#include <vector>

class Table;
class WorkingTables;

// One charted group: a row of mdGT00 that counts at least one animal.
struct GroupsChartCategory {
    int id = 0;      // the row's "ID"
    QString label;   // its "GT" caption, trimmed
    QString block;   // for an indented row, the caption of the row heading its block
    int overall = 0; // its count in mdGT00

    bool operator==(const GroupsChartCategory&) const = default;
};

// One herd: its count of every charted group, in the categories' order.
struct GroupsChartSeries {
    int slot = 0;
    QString code;
    QString name; // "Stado 001"
    std::vector<int> values;

    bool operator==(const GroupsChartSeries&) const = default;
};

// The counted groups by herd, as the chart of the window and the print's
// chart page show them. A group's herd values are what the herds' tables say,
// even where their sum is not the overall count.
struct GroupsChartData {
    std::vector<GroupsChartCategory> categories;
    std::vector<GroupsChartSeries> series;

    bool isEmpty() const { return categories.empty() || series.empty(); }
    int herdSum(std::size_t category) const;
    int largestHerdSum() const;
    bool herdSumsMatch() const; // every group's herd sum is its overall count
    // The labels with the block added where two groups share a caption, so no
    // two are alike.
    QStringList categoryLabels() const;
    // The herd sum, and the overall count beside it where the two differ.
    QString totalText(std::size_t category) const;

    bool operator==(const GroupsChartData&) const = default;
};

// The groups of mdGT00 that count an animal, by every herd slot shown; empty
// when nothing is counted or no herd is shown.
GroupsChartData BuildGroupsChartData(const WorkingTables& tables);

// The value axis: a round step dividing it into at most six parts, and its end.
struct ValueAxisScale {
    int step = 1;
    int maximum = 1;
    bool operator==(const ValueAxisScale&) const = default;
};
ValueAxisScale ScaleFor(int largest);

// The colour of the n-th herd of a chart, the same on the screen and on paper.
QColor HerdColour(std::size_t index);
