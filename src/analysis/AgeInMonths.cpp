#include "analysis/AgeInMonths.h"

#include <cmath>
#include <utility>

namespace {
// Month and day of a date; (0, 0) for dates before 1 January of year 1, which
// is how the empty date reads, so it never agrees with a real date.
std::pair<int, int> MonthAndDay(double day)
{
    constexpr double FirstDayOfYearOne = -693593.0;
    if (day < FirstDayOfYearOne)
        return {0, 0};
    const QDate date = DateEpoch().addDays(static_cast<qint64>(day));
    return {date.month(), date.day()};
}
} // namespace

int AgeInMonths(TDateTime birth, TDateTime onDay)
{
    const double from = std::floor(birth);
    const double to = std::floor(onDay);
    int months = static_cast<int>(std::trunc(std::fabs(to - from) / 30.4375)) + 1;
    if (MonthAndDay(from) == MonthAndDay(to))
        --months;
    return months;
}
