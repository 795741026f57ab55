#pragma once

#include <QDate>

#include <cmath>

// Registry dates travel as day counts with the time as a fraction, day 0 being
// 30 December 1899. The value -700000 stands for "no date".
using TDateTime = double;

inline constexpr TDateTime EmptyDate = -700000.0;

inline bool IsEmptyDate(TDateTime value)
{
    return value <= EmptyDate;
}

inline QDate DateEpoch()
{
    return QDate(1899, 12, 30);
}

inline TDateTime ToDateTime(QDate date)
{
    return date.isValid() ? static_cast<TDateTime>(DateEpoch().daysTo(date)) : EmptyDate;
}

// The calendar date of a day count; an invalid QDate for the empty date.
inline QDate ToDate(TDateTime value)
{
    if (IsEmptyDate(value))
        return {};
    return DateEpoch().addDays(static_cast<qint64>(std::floor(value)));
}

// The date a download or a recount runs for: an empty date (none, or day 0)
// and a date after today both become today.
inline QDate RunDate(QDate date)
{
    const QDate today = QDate::currentDate();
    return !date.isValid() || date == DateEpoch() || date > today ? today : date;
}
