#include "reports/ReportValue.h"

#include <cmath>

ReportValue FromField(const FieldValue& value)
{
    if (const auto* text = std::get_if<QString>(&value))
        return *text;
    if (const auto* number = std::get_if<qint32>(&value))
        return static_cast<double>(*number);
    if (const auto* date = std::get_if<QDate>(&value))
        return *date;
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    return {};
}

bool IsEmpty(const ReportValue& value)
{
    if (std::holds_alternative<std::monostate>(value))
        return true;
    const auto* text = std::get_if<QString>(&value);
    return text && text->isEmpty();
}

std::optional<double> NumberIn(const ReportValue& value)
{
    bool ok = false;
    double number = 0.0;
    if (const auto* held = std::get_if<double>(&value)) {
        number = *held;
        ok = true;
    } else if (const auto* text = std::get_if<QString>(&value)) {
        number = text->trimmed().replace(u',', u'.').toDouble(&ok);
    }
    return ok && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

double AsNumber(const ReportValue& value)
{
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? 1.0 : 0.0;
    return NumberIn(value).value_or(0.0);
}
