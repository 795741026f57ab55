#include "gui/grids/SummaryTreeView.h"

#include "gui/grids/SummaryModel.h"

#include <QHeaderView>
#include <QPainter>

#include <algorithm>

SummaryTreeView::SummaryTreeView(QWidget* parent) : QTreeView(parent) {}

void SummaryTreeView::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (index.data(GroupRowRole).toBool())
        drawGroupRow(painter, option, index);
    else
        QTreeView::drawRow(painter, option, index);
}

void SummaryTreeView::drawGroupRow(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    const QRect row = option.rect;
    const int left = header()->sectionViewportPosition(header()->logicalIndex(0));
    const int right = header()->length() - header()->offset();
    const bool selected = selectionModel() && selectionModel()->isSelected(index);
    const QRect band(left, row.top(), right - left, row.height());
    painter->fillRect(band, selected ? palette().highlight() : palette().button());
    painter->setPen(palette().color(QPalette::Mid));
    painter->drawLine(band.bottomLeft(), band.bottomRight());

    QStyleOption arrow;
    arrow.initFrom(this);
    arrow.rect = QRect(left, row.top(), indentation(), row.height());
    arrow.state = QStyle::State_Item | QStyle::State_Children;
    if (isExpanded(index))
        arrow.state |= QStyle::State_Open;
    style()->drawPrimitive(QStyle::PE_IndicatorBranch, &arrow, painter, this);

    QFont font = option.font;
    font.setBold(true);
    painter->setFont(font);
    painter->setPen(palette().color(selected ? QPalette::HighlightedText : QPalette::ButtonText));
    // The text stays in sight while the columns scroll sideways.
    const QRect text(std::max(left, 0) + indentation() + 2, row.top(), viewport()->width(), row.height());
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter, index.data().toString());
}
