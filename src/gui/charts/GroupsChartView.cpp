#include "gui/charts/GroupsChartView.h"

#include "framework/SafeFile.h"
#include "gui/charts/GroupsChartBuilder.h"

#include <QBarSet>
#include <QBuffer>
#include <QChartView>
#include <QCursor>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHorizontalStackedBarSeries>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QToolTip>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int RowHeight = 22;     // room for one group's label on the axis
constexpr int ChartMargins = 170; // the title, the value axis and the legend below
constexpr int LegendEntryHeight = 22;

// Tall enough for every group's label, and for a legend listed beside the chart.
int ChartHeight(const GroupsChartData& data)
{
    return std::max(static_cast<int>(data.categories.size()) * RowHeight + ChartMargins,
                    static_cast<int>(data.series.size()) * LegendEntryHeight + ChartMargins);
}
} // namespace

GroupsChartDialogs StandardGroupsChartDialogs()
{
    return {[](QWidget* parent) {
                return QFileDialog::getSaveFileName(parent, u"Zapisz wykres"_s, u"Wykres grup technologicznych.png"_s,
                                                    u"Obraz PNG (*.png)"_s);
            },
            [](QWidget* parent, const QString& text) { QMessageBox::warning(parent, u"Błąd"_s, text); }};
}

GroupsChartView::GroupsChartView(const WorkingTables& tables, GroupsChartDialogs dialogs, QWidget* parent)
    : QWidget(parent), tables_(tables), dialogs_(std::move(dialogs))
{
    const GroupsChartDialogs standard = StandardGroupsChartDialogs();
    if (!dialogs_.askPngFileName)
        dialogs_.askPngFileName = standard.askPngFileName;
    if (!dialogs_.showWarning)
        dialogs_.showWarning = standard.showWarning;
    setObjectName(u"tsWykres"_s);

    btnWykresPng_ = new QPushButton(u"Zapisz PNG"_s, this);
    btnWykresPng_->setObjectName(u"btnWykresPng"_s);
    btnWykresPng_->setToolTip(u"Zapisuje wykres jako obraz PNG"_s);
    connect(btnWykresPng_, &QPushButton::clicked, this, &GroupsChartView::btnWykresPngClick);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnWykresPng_);

    chartView_ = new QChartView(this);
    chartView_->setObjectName(u"chWykres"_s);
    chartView_->setRenderHint(QPainter::Antialiasing);
    chartArea_ = new QScrollArea(this);
    chartArea_->setWidgetResizable(true);
    chartArea_->setFrameShape(QFrame::NoFrame);
    chartArea_->setWidget(chartView_);
    emptyLabel_ = new QLabel(u"Brak danych do wykresu"_s, this);
    emptyLabel_->setObjectName(u"lblBrakDanych"_s);
    emptyLabel_->setAlignment(Qt::AlignCenter);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(chartArea_, 1);
    layout->addWidget(emptyLabel_, 1);
    chartArea_->hide();
    btnWykresPng_->setEnabled(false);
}

void GroupsChartView::refresh()
{
    GroupsChartData data = BuildGroupsChartData(tables_);
    if (data == data_)
        return; // the page already shows it (an empty start shows the label)
    data_ = std::move(data);
    const bool empty = data_.isEmpty();
    if (!empty)
        showChart();
    chartArea_->setVisible(!empty);
    emptyLabel_->setVisible(empty);
    btnWykresPng_->setEnabled(!empty);
}

// A new chart each time: the view hands the previous one back, to be deleted.
void GroupsChartView::showChart()
{
    std::unique_ptr<QChart> chart = MakeGroupsChart(data_);
    for (QAbstractSeries* series : chart->series())
        if (auto* bars = qobject_cast<QHorizontalStackedBarSeries*>(series))
            connect(
                bars, &QHorizontalStackedBarSeries::hovered, this, [this, bars](bool over, int index, QBarSet* set) {
                    QToolTip::showText(QCursor::pos(),
                                       over ? SegmentToolTip(data_, index, bars->barSets().indexOf(set)) : QString());
                });
    const std::unique_ptr<QChart> previous(chartView_->chart());
    chartView_->setChart(chart.release());
    chartView_->setMinimumHeight(ChartHeight(data_));
}

bool GroupsChartView::savePng(const QString& fileName)
{
    const QString path = QFileInfo(fileName).suffix().isEmpty() ? fileName + u".png"_s : fileName;
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !chartView_->grab().save(&buffer, "PNG")) {
        dialogs_.showWarning(this, u"Nie udało się utworzyć obrazu wykresu."_s);
        return false;
    }
    try {
        WriteFileAtomically(path, png);
        return true;
    } catch (const FileWriteError& error) {
        dialogs_.showWarning(this, error.message());
        return false;
    }
}

void GroupsChartView::btnWykresPngClick()
{
    const QString fileName = dialogs_.askPngFileName(this);
    if (!fileName.isEmpty())
        savePng(fileName);
}
