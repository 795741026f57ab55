#include "gui/grids/GridFooter.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace {
constexpr int Margin = 4;
}

GridFooter::GridFooter(QAbstractItemView& view, QHeaderView& header, QWidget* parent)
    : QWidget(parent), view_(view), header_(header)
{
    setObjectName(u"footer"_s);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    const auto repaint = [this] { update(); };
    connect(&header_, &QHeaderView::sectionResized, this, repaint);
    connect(&header_, &QHeaderView::sectionMoved, this, repaint);
    connect(&header_, &QHeaderView::geometriesChanged, this, repaint);
    connect(view_.horizontalScrollBar(), &QScrollBar::valueChanged, this, repaint);
    view_.viewport()->installEventFilter(this);
}

void GridFooter::setText(int column, const QString& text, Qt::Alignment alignment)
{
    cells_.insert(column, {text, alignment});
    update();
}

QSize GridFooter::sizeHint() const
{
    return {0, fontMetrics().height() + 2 * Margin};
}

bool GridFooter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        update();
    return QWidget::eventFilter(watched, event);
}

// Where the view's viewport begins, in this widget's coordinates.
int GridFooter::viewportLeft() const
{
    const QWidget* top = window();
    return view_.viewport()->mapTo(top, QPoint()).x() - mapTo(top, QPoint()).x();
}

QRect GridFooter::cellRect(int column) const
{
    return {viewportLeft() + header_.sectionViewportPosition(column), 1, header_.sectionSize(column), height() - 2};
}

void GridFooter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().button());
    painter.setClipRect(QRect(viewportLeft(), 0, view_.viewport()->width(), height()));
    for (auto cell = cells_.cbegin(); cell != cells_.cend(); ++cell) {
        if (header_.isSectionHidden(cell.key()))
            continue;
        const QRect box = cellRect(cell.key());
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(box.adjusted(0, 0, -1, -1));
        painter.setPen(palette().color(QPalette::ButtonText));
        painter.drawText(box.adjusted(Margin, 0, -Margin, 0), static_cast<int>(cell->alignment), cell->text);
    }
}
