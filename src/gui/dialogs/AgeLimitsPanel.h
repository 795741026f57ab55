#pragma once

#include "analysis/AgeLimits.h"
#include "gui/dialogs/AgeLimitRows.h"

#include <QGroupBox>

#include <utility>
#include <vector>

class MonthEdit;
class QGridLayout;

// The group "Przedziały wiekowe": one row per technological class with its
// read-only name and the edits "Wiek od (>)" and "Wiek do (<=)".
class AgeLimitsPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit AgeLimitsPanel(QWidget* parent = nullptr);

    void showLimits(const AgeLimits& limits);
    AgeLimits limits() const; // an emptied edit counts as 0

private:
    void addFamilyHeader(QGridLayout& grid, int row);
    void addRow(QGridLayout& grid, int row, const AgeLimitRow& limitRow);
    void addBoundEdit(QGridLayout& grid, int row, int column, const QString& name, BoundEdit kind);

    std::vector<std::pair<AgeLimit, MonthEdit*>> keyedEdits_;
};
