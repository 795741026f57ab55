#pragma once

#include "reports/chart/GroupsChartData.h"

#include <QWidget>

#include <functional>

class QChartView;
class QLabel;
class QPushButton;
class QScrollArea;
class WorkingTables;

// What the chart page asks the user; tests answer without a modal dialog.
struct GroupsChartDialogs {
    // The PNG file to write; empty when the user gave up.
    std::function<QString(QWidget* parent)> askPngFileName;
    std::function<void(QWidget* parent, const QString& text)> showWarning;
};

// The QFileDialog and QMessageBox behind GroupsChartDialogs.
GroupsChartDialogs StandardGroupsChartDialogs();

// The page "Wykres": the technological groups of "Ogółem" as stacked bars by
// herd, or "Brak danych do wykresu" while no group counts an animal, and
// "Zapisz PNG" to keep the chart as an image.
class GroupsChartView : public QWidget {
    Q_OBJECT

public:
    // A dialog left empty in `dialogs` is the standard one.
    explicit GroupsChartView(const WorkingTables& tables, GroupsChartDialogs dialogs = {}, QWidget* parent = nullptr);

    // Reads the group tables again; the chart is rebuilt only when what it shows changed.
    void refresh();

    const GroupsChartData& data() const { return data_; }
    QChartView* chartView() const { return chartView_; }
    // Writes the chart as a PNG through a temporary file in the same folder;
    // a failure is told to the user. A name without a suffix gets ".png".
    bool savePng(const QString& fileName);

private:
    void showChart();
    void btnWykresPngClick();

    const WorkingTables& tables_;
    GroupsChartDialogs dialogs_;
    GroupsChartData data_;
    QPushButton* btnWykresPng_ = nullptr;
    QScrollArea* chartArea_ = nullptr;
    QChartView* chartView_ = nullptr;
    QLabel* emptyLabel_ = nullptr;
};
