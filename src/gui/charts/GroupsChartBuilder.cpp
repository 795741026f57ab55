#include "gui/charts/GroupsChartBuilder.h"

#include "reports/chart/GroupsChartData.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QHorizontalStackedBarSeries>
#include <QLegend>
#include <QValueAxis>

using namespace Qt::StringLiterals;

namespace {
// The legend does not wrap: more herds than fit in one row below the chart
// are listed beside it.
constexpr std::size_t HerdsBelowTheChart = 8;

std::unique_ptr<QHorizontalStackedBarSeries> HerdBars(const GroupsChartData& data)
{
    auto bars = std::make_unique<QHorizontalStackedBarSeries>();
    bars->setBarWidth(0.7);
    for (std::size_t herd = 0; herd < data.series.size(); ++herd) {
        const GroupsChartSeries& series = data.series[herd];
        auto set = std::make_unique<QBarSet>(series.name);
        set->setColor(HerdColour(herd));
        set->setBorderColor(Qt::white);
        for (auto value = series.values.rbegin(); value != series.values.rend(); ++value)
            set->append(*value);
        bars->append(set.release());
    }
    return bars;
}

// Each group with its total; the texts are rich text to the chart, and the
// captions hold "<".
std::unique_ptr<QBarCategoryAxis> GroupAxis(const GroupsChartData& data)
{
    auto axis = std::make_unique<QBarCategoryAxis>();
    const QStringList labels = data.categoryLabels();
    for (qsizetype i = labels.size() - 1; i >= 0; --i)
        axis->append(u"%1: %2"_s.arg(labels[i], data.totalText(static_cast<std::size_t>(i))).toHtmlEscaped());
    axis->setGridLineVisible(false);
    return axis;
}

std::unique_ptr<QValueAxis> CountAxis(const GroupsChartData& data)
{
    const ValueAxisScale scale = ScaleFor(data.largestHerdSum());
    auto axis = std::make_unique<QValueAxis>();
    axis->setRange(0, scale.maximum);
    axis->setTickCount(scale.maximum / scale.step + 1);
    axis->setLabelFormat(u"%d"_s);
    axis->setTitleText(u"Liczba zwierząt"_s);
    return axis;
}
} // namespace

std::unique_ptr<QChart> MakeGroupsChart(const GroupsChartData& data)
{
    auto chart = std::make_unique<QChart>();
    chart->setTitle(u"Grupy technologiczne według stad"_s);
    QFont titleFont = chart->titleFont();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
    titleFont.setBold(true);
    chart->setTitleFont(titleFont);
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->legend()->setAlignment(data.series.size() <= HerdsBelowTheChart ? Qt::AlignBottom : Qt::AlignRight);
    chart->legend()->setVisible(true);

    std::unique_ptr<QHorizontalStackedBarSeries> bars = HerdBars(data);
    std::unique_ptr<QBarCategoryAxis> groups = GroupAxis(data);
    std::unique_ptr<QValueAxis> counts = CountAxis(data);
    // The chart owns what it is given.
    QHorizontalStackedBarSeries* series = bars.release();
    QBarCategoryAxis* groupAxis = groups.release();
    QValueAxis* countAxis = counts.release();
    chart->addSeries(series);
    chart->addAxis(groupAxis, Qt::AlignLeft);
    chart->addAxis(countAxis, Qt::AlignBottom);
    series->attachAxis(groupAxis);
    series->attachAxis(countAxis);
    return chart;
}

int CategoryOfBar(const GroupsChartData& data, int bar)
{
    return static_cast<int>(data.categories.size()) - 1 - bar;
}

QString SegmentToolTip(const GroupsChartData& data, int bar, int herd)
{
    const int category = CategoryOfBar(data, bar);
    const auto c = static_cast<std::size_t>(category);
    const auto h = static_cast<std::size_t>(herd);
    if (category < 0 || c >= data.categories.size() || h >= data.series.size())
        return {};
    return u"%1\n%2: %3"_s.arg(data.categoryLabels()[category], data.series[h].name).arg(data.series[h].values[c]);
}
