#pragma once

#include <QHash>
#include <QWidget>

class QAbstractItemView;
class QHeaderView;

// A row of totals under a grid's columns: each text sits under its column and
// follows the column's width and the view's horizontal scrolling.
class GridFooter : public QWidget {
    Q_OBJECT

public:
    GridFooter(QAbstractItemView& view, QHeaderView& header, QWidget* parent);

    void setText(int column, const QString& text, Qt::Alignment alignment);
    QString text(int column) const { return cells_.value(column).text; }
    QRect cellRect(int column) const; // where the column's total is drawn, under the column
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Cell {
        QString text;
        Qt::Alignment alignment;
    };
    int viewportLeft() const;

    QAbstractItemView& view_;
    QHeaderView& header_;
    QHash<int, Cell> cells_;
};
