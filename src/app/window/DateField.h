#pragma once

#include <QDate>
#include <QWidget>

class QDateEdit;

// A date-only edit that can be empty, with buttons to clear it and to pick today.
class DateField : public QWidget {
    Q_OBJECT

public:
    explicit DateField(QWidget* parent = nullptr);

    QDate date() const; // invalid when empty
    void setDate(QDate date);
    QString displayText() const;
    QDateEdit* edit() const { return edit_; }

private:
    QDateEdit* edit_;
};

// Dates as the window shows them.
inline QString ShortDate(QDate date)
{
    return date.toString(QStringLiteral("dd.MM.yyyy"));
}
