#pragma once

#include <QFrame>

class QListWidget;
class QListWidgetItem;

// A drop-down list of one column's distinct values with check boxes. The first
// entry, "(Wszystkie)", stands for no filter; "OK" hands over the checked values.
class ColumnFilterPopup : public QFrame {
    Q_OBJECT

public:
    // `values` are display texts in the column's order; `accepted` those checked now.
    ColumnFilterPopup(const QString& field, const QStringList& values, const QStringList& accepted, QWidget* parent);

    QListWidget* list() const { return list_; }
    QStringList checkedValues() const; // empty when "(Wszystkie)" is checked
    void apply();

Q_SIGNALS:
    void filterChosen(const QStringList& acceptedTexts);

private:
    void itemChanged(QListWidgetItem* item);
    void uncheckValues();

    QListWidget* list_;
};
