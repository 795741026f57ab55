#pragma once

#include <QTreeView>

// The summary grid's view: a group row (GroupRowRole) is drawn as one band
// across all columns with its expand arrow and its text, data rows as usual.
class SummaryTreeView : public QTreeView {
    Q_OBJECT

public:
    explicit SummaryTreeView(QWidget* parent = nullptr);

protected:
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void drawGroupRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
};
