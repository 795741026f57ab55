#pragma once

#include <QDateTimeEdit>
#include <QWidget>

using namespace Qt::StringLiterals;

// A date-only edit that can be empty, with buttons to clear it and to pick today.
class DateField : public QWidget {
    Q_OBJECT

public:
    explicit DateField(QWidget* parent = nullptr);

    QDate date() const; // invalid when empty
    void setDate(QDate date);
    QString displayText() const;
    QDateEdit* edit() const { return edit_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool wholeTextSelected() const;

    QDateEdit* edit_;
    QDateTimeEdit::Section lastDigitSection_ = QDateTimeEdit::NoSection; // where the last key typed a digit
};

// Dates as the window shows them.
inline QString ShortDate(QDate date)
{
    return date.toString(u"dd.MM.yyyy"_s);
}
