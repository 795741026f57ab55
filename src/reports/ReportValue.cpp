#include "reports/ReportValue.h"

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

double AsNumber(const ReportValue& value)
{
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? 1.0 : 0.0;
    if (const auto* text = std::get_if<QString>(&value)) {
        QString normalised = text->trimmed();
        normalised.replace(u',', u'.');
        return normalised.toDouble();
    }
    return 0.0;
}
