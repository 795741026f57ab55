#pragma once

#include <QLineEdit>

#include <optional>

// A right-aligned edit for a whole number of months. Without focus it shows the
// number with thousands grouping ("1 000"); while it has focus, the plain digits.
class MonthEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit MonthEdit(QWidget* parent = nullptr);

    // Empty, or text that is no number (a lone "-"), gives no value.
    std::optional<int> value() const;
    void setValue(std::optional<int> value);

    static QString grouped(int value);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};
