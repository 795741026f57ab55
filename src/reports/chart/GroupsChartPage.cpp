#include "reports/chart/GroupsChartPage.h"

#include "reports/chart/GroupsChartData.h"
#include "reports/chart/PageItemWriter.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {
constexpr double Margin = 10.0 * PixelsPerMm;
constexpr double Gap = 6.0;
constexpr double TitleHeight = 30.0;
constexpr double LegendEntryWidth = 110.0;
constexpr double LegendRowHeight = 18.0;
constexpr double AxisTextHeight = 16.0;
const QColor GridColour{205, 205, 205};

// The room between the items of the page's top half and those of its bottom half.
QRectF FreeArea(const PreparedPage& page)
{
    const QSizeF paper = page.paperMm * PixelsPerMm;
    double top = Margin;
    double bottom = paper.height() - Margin;
    for (const PreparedItem& item : page.items) {
        const QRectF rect = item.rect.normalized();
        if (rect.center().y() < paper.height() / 2)
            top = std::max(top, rect.bottom() + Gap);
        else
            bottom = std::min(bottom, rect.top() - Gap);
    }
    return QRectF(Margin, top, paper.width() - 2 * Margin, std::max(bottom - top, 0.0));
}

ReportFrame Pen(const QColor& colour, double width)
{
    return ReportFrame{FrameAll, width, colour};
}

// Where the title, the bars, the axis and the legend go, worked out once from the room and the data.
struct ChartGeometry {
    QRectF area, title, plot, legend;
    double labelWidth = 0.0;
    double rowHeight = 0.0;
    double barHeight = 0.0;
    double fontSize = 0.0;
    ValueAxisScale scale;

    ChartGeometry(const QRectF& room, const GroupsChartData& data) : area(room)
    {
        const auto herds = static_cast<double>(data.series.size());
        const double perRow = std::max(1.0, std::floor(area.width() / LegendEntryWidth));
        const double legendHeight = std::ceil(herds / perRow) * LegendRowHeight;
        title = QRectF(area.left(), area.top(), area.width(), TitleHeight);
        legend = QRectF(area.left(), area.bottom() - legendHeight, area.width(), legendHeight);
        labelWidth = std::min(330.0, area.width() * 0.32);
        const double totalWidth = data.herdSumsMatch() ? 50.0 : 130.0;
        const double plotTop = title.bottom() + Gap;
        const double plotBottom = legend.top() - Gap - 2 * AxisTextHeight - 4.0;
        plot = QRectF(QPointF(area.left() + labelWidth + Gap, plotTop), QPointF(area.right() - totalWidth, plotBottom));
        rowHeight = plot.height() / static_cast<double>(data.categories.size());
        barHeight = std::min(rowHeight * 0.7, 28.0);
        fontSize = std::clamp(rowHeight * 0.62, 7.0, 11.0);
        scale = ScaleFor(data.largestHerdSum());
    }

    double x(double value) const { return plot.left() + value / scale.maximum * plot.width(); }
    QRectF row(std::size_t index) const
    {
        return QRectF(area.left(), plot.top() + static_cast<double>(index) * rowHeight, area.width(), rowHeight);
    }
};

class ChartDrawing {
public:
    ChartDrawing(PreparedReport& report, int page, const GroupsChartData& data)
        : writer_(report, page), data_(data), labels_(data.categoryLabels()), g_(FreeArea(writer_.page()), data)
    {}

    void draw()
    {
        writer_.text(g_.title, GroupsChartTitle(), TextStyle(19.0, HAlign::Center, true));
        drawValueAxis();
        for (std::size_t category = 0; category < data_.categories.size(); ++category)
            drawBar(category);
        // The axes over the bars' outlines.
        writer_.line(g_.plot.topLeft(), g_.plot.bottomLeft(), Pen(Qt::black, 0.8));
        writer_.line(g_.plot.bottomLeft(), g_.plot.bottomRight(), Pen(Qt::black, 0.8));
        drawLegend();
    }

private:
    void drawValueAxis()
    {
        const PreparedStyle tickStyle = TextStyle(10.0, HAlign::Center);
        const double labelTop = g_.plot.bottom() + 2.0;
        for (int value = 0; value <= g_.scale.maximum; value += g_.scale.step) {
            const double x = g_.x(value);
            if (value > 0)
                writer_.line({x, g_.plot.top()}, {x, g_.plot.bottom()}, Pen(GridColour, 0.5));
            writer_.text(QRectF(x - 30.0, labelTop, 60.0, AxisTextHeight), QString::number(value), tickStyle);
        }
        writer_.text(QRectF(g_.plot.left(), labelTop + AxisTextHeight, g_.plot.width(), AxisTextHeight),
                     u"Liczba zwierząt"_s, TextStyle(10.0, HAlign::Center));
    }

    void drawBar(std::size_t category)
    {
        const QRectF row = g_.row(category);
        PreparedStyle labelStyle = TextStyle(g_.fontSize, HAlign::Right);
        labelStyle.wordWrap = row.height() >= 2.4 * g_.fontSize;
        writer_.text(QRectF(row.left(), row.top(), g_.labelWidth, row.height()),
                     labels_[static_cast<qsizetype>(category)], labelStyle);
        const double top = row.center().y() - g_.barHeight / 2;
        double sum = 0.0;
        for (std::size_t herd = 0; herd < data_.series.size(); ++herd) {
            const int value = data_.series[herd].values[category];
            if (value <= 0)
                continue;
            const QRectF segment(QPointF(g_.x(sum), top), QPointF(g_.x(sum + value), top + g_.barHeight));
            writer_.box(segment, HerdColour(herd), Pen(Qt::white, 0.6));
            drawSegmentValue(segment, value, HerdColour(herd));
            sum += value;
        }
        writer_.text(QRectF(g_.x(sum) + 3.0, row.top(), g_.area.right() - g_.x(sum) - 3.0, row.height()),
                     data_.totalText(category), TextStyle(g_.fontSize, HAlign::Left, true));
    }

    // A herd's count inside its segment, where it fits.
    void drawSegmentValue(const QRectF& segment, int value, const QColor& fill)
    {
        const QString text = QString::number(value);
        const double width = static_cast<double>(text.size()) * g_.fontSize * 0.6 + 6.0;
        if (segment.width() < width || segment.height() < g_.fontSize + 2.0)
            return;
        PreparedStyle style = TextStyle(g_.fontSize * 0.9, HAlign::Center);
        style.gapX = 0.0;
        style.gapY = 0.0;
        style.font.color = qGray(fill.rgb()) < 150 ? Qt::white : Qt::black;
        writer_.text(segment, text, style);
    }

    void drawLegend()
    {
        const int perRow = std::max(1, static_cast<int>(g_.legend.width() / LegendEntryWidth));
        const int herds = static_cast<int>(data_.series.size());
        const PreparedStyle nameStyle = TextStyle(11.0, HAlign::Left);
        for (int herd = 0; herd < herds; ++herd) {
            const int inRow = std::min(perRow, herds - herd / perRow * perRow);
            const double left = g_.legend.center().x() - inRow * LegendEntryWidth / 2;
            const double x = left + (herd % perRow) * LegendEntryWidth;
            const double y = g_.legend.top() + (herd / perRow) * LegendRowHeight;
            const auto index = static_cast<std::size_t>(herd);
            writer_.box(QRectF(x + 4.0, y + 3.0, 12.0, 12.0), HerdColour(index), Pen(Qt::darkGray, 0.5));
            writer_.text(QRectF(x + 18.0, y, LegendEntryWidth - 20.0, LegendRowHeight), data_.series[index].name,
                         nameStyle);
        }
    }

    PageItemWriter writer_;
    const GroupsChartData& data_;
    QStringList labels_;
    ChartGeometry g_;
};
} // namespace

QString GroupsChartTitle()
{
    return u"Wykres grup technologicznych"_s;
}

void DrawGroupsChart(PreparedReport& report, int page, const GroupsChartData& data)
{
    if (data.isEmpty() || page < 0 || page >= report.pageCount())
        return;
    ChartDrawing(report, page, data).draw();
}

bool AppendGroupsChartPage(PreparedReport& report, const GroupsChartData& data)
{
    if (data.isEmpty())
        return false;
    report.pages.push_back(PreparedPage{QSizeF(297.0, 210.0), true, {}});
    DrawGroupsChart(report, report.pageCount() - 1, data);
    return true;
}
