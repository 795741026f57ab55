#include "gui/dialogs/AgeLimitsPanel.h"

#include "gui/dialogs/DialogParts.h"
#include "gui/dialogs/MonthEdit.h"

#include <QGridLayout>
#include <QLabel>

#include <algorithm>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
constexpr int NameColumn = 0;
constexpr int LowerColumn = 1;
constexpr int UpperColumn = 2;
constexpr int BoundEditWidth = 72;
constexpr int FamilyGap = 8;

AgeLimit LimitOfKey(const QString& key)
{
    const auto& keys = AgeLimitKeys();
    const auto found = std::find_if(keys.begin(), keys.end(),
                                    [&key](const AgeLimitKey& k) { return key == QLatin1StringView(k.key); });
    if (found == keys.end())
        throw std::logic_error("age limit row names an unknown key: " + key.toStdString());
    return found->limit;
}

QLabel* HeaderLabel(const char* text, Qt::Alignment alignment)
{
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setAlignment(alignment | Qt::AlignBottom);
    return label;
}

QLineEdit* ClassName(const AgeLimitRow& row)
{
    auto* name = new QLineEdit(row.caption);
    name->setObjectName(row.stem + u"_Grupa"_s);
    MakeReadOnly(*name);
    name->setFocusPolicy(Qt::NoFocus);
    name->setMinimumWidth(name->fontMetrics().horizontalAdvance(row.caption) + 16);
    return name;
}
} // namespace

AgeLimitsPanel::AgeLimitsPanel(QWidget* parent) : QGroupBox(u"Przedziały wiekowe"_s, parent)
{
    setObjectName(u"grpPrzedzialyWiekowe"_s);
    auto* grid = new QGridLayout(this);
    grid->setColumnStretch(NameColumn, 1);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(3);
    int row = 0;
    for (const AgeLimitFamily& family : AgeLimitFamilies()) {
        if (row > 0)
            grid->setRowMinimumHeight(row++, FamilyGap);
        addFamilyHeader(*grid, row++);
        for (const AgeLimitRow& limitRow : family)
            addRow(*grid, row++, limitRow);
    }
    auto* note = new QLabel(u"Wartości pojawią sie od następnego pobrania danych"_s);
    note->setObjectName(u"lblUwaga"_s);
    grid->setRowMinimumHeight(row++, FamilyGap);
    grid->addWidget(note, row, NameColumn, 1, 3);
}

void AgeLimitsPanel::addFamilyHeader(QGridLayout& grid, int row)
{
    grid.addWidget(HeaderLabel("Grupa technologiczna", Qt::AlignLeft), row, NameColumn);
    grid.addWidget(HeaderLabel("Wiek od (>)", Qt::AlignRight), row, LowerColumn);
    grid.addWidget(HeaderLabel("Wiek do (<=)", Qt::AlignRight), row, UpperColumn);
}

void AgeLimitsPanel::addRow(QGridLayout& grid, int row, const AgeLimitRow& limitRow)
{
    grid.addWidget(ClassName(limitRow), row, NameColumn);
    addBoundEdit(grid, row, LowerColumn, limitRow.lowerName(), limitRow.lower);
    addBoundEdit(grid, row, UpperColumn, limitRow.upperName(), limitRow.upper);
}

void AgeLimitsPanel::addBoundEdit(QGridLayout& grid, int row, int column, const QString& name, BoundEdit kind)
{
    auto* edit = new MonthEdit;
    edit->setObjectName(name);
    edit->setFixedWidth(BoundEditWidth);
    edit->setEnabled(kind != BoundEdit::None);
    grid.addWidget(edit, row, column, Qt::AlignRight);
    if (kind == BoundEdit::Key)
        keyedEdits_.emplace_back(LimitOfKey(name), edit);
}

void AgeLimitsPanel::showLimits(const AgeLimits& limits)
{
    for (const auto& [limit, edit] : keyedEdits_)
        edit->setValue(limits[limit]);
}

AgeLimits AgeLimitsPanel::limits() const
{
    AgeLimits limits = AgeLimits::defaults();
    for (const auto& [limit, edit] : keyedEdits_)
        limits.set(limit, edit->value().value_or(0));
    return limits;
}
