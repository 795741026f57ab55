#include "gui/grids/TableGrid.h"

#include "gui/grids/FooterTotals.h"
#include "gui/grids/GridFooter.h"
#include "gui/grids/GridViewSetup.h"
#include "gui/grids/TableModel.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TableGrid::TableGrid(Table& table, GridKind kind, QWidget* parent)
    : QWidget(parent), kind_(kind), model_(new TableModel(table, ColumnsFor(kind), this)), view_(new QTableView(this)),
      footer_(new GridFooter(*view_, *view_->horizontalHeader(), this)), footerCells_(FooterCellsFor(kind))
{
    view_->setObjectName(u"view"_s);
    view_->setModel(model_);
    SetUpGridView(*view_);
    view_->verticalHeader()->hide();
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    SetUpColumnWidths(*view_->horizontalHeader(), columns());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view_);
    layout->addWidget(footer_);

    connect(model_, &QAbstractItemModel::modelReset, this, &TableGrid::updateFooter);
    connect(model_, &QAbstractItemModel::rowsInserted, this, &TableGrid::updateFooter);
    connect(model_, &QAbstractItemModel::rowsRemoved, this, &TableGrid::updateFooter);
    connect(model_, &QAbstractItemModel::dataChanged, this, &TableGrid::updateFooter);
    followContentWithColumns();
    updateFooter();
}

// A reset (the end of a long operation) fits the columns at once; changes of
// single rows (the group catalogue's rebuild) fit them once after the last one.
void TableGrid::followContentWithColumns()
{
    auto* fitLater = new QTimer(this);
    fitLater->setSingleShot(true);
    fitLater->setInterval(0);
    connect(fitLater, &QTimer::timeout, this, &TableGrid::fitColumns);
    connect(model_, &QAbstractItemModel::modelReset, this, &TableGrid::fitColumns);
    for (auto change : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(model_, change, fitLater, qOverload<>(&QTimer::start));
    connect(model_, &QAbstractItemModel::dataChanged, fitLater, qOverload<>(&QTimer::start));
    fitColumns();
}

void TableGrid::fitColumns()
{
    FitColumnsToContent(*view_->horizontalHeader(), columns(), model_->table(), view_->font());
    updateGeometry();
}

QSize TableGrid::minimumSizeHint() const
{
    const QSize least = QWidget::minimumSizeHint();
    if (kind_ != GridKind::Groups)
        return least;
    const int whole =
        view_->horizontalHeader()->length() + 2 * view_->frameWidth() + view_->verticalScrollBar()->sizeHint().width();
    return {std::max(least.width(), whole), least.height()};
}

const std::vector<GridColumn>& TableGrid::columns() const
{
    return model_->columns();
}

QString TableGrid::footerText(const QString& field) const
{
    const int column = ColumnOfField(columns(), field);
    return column < 0 ? QString() : footer_->text(column);
}

void TableGrid::updateFooter()
{
    const QStringList texts = FooterTexts(model_->table(), footerCells_);
    for (std::size_t i = 0; i < footerCells_.size(); ++i) {
        const int column = ColumnOfField(columns(), footerCells_[i].field);
        footer_->setText(column, texts[static_cast<qsizetype>(i)],
                         columns()[static_cast<std::size_t>(column)].alignment);
    }
}
