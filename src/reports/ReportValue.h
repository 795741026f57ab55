#pragma once

#include "core/tables/Field.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>

#include <optional>
#include <variant>

// A value inside a report expression. Every number is a double, as in the
// templates' own expression language; a field that is null is monostate.
using ReportValue = std::variant<std::monostate, QString, double, QDate, QTime, QDateTime, bool>;

ReportValue FromField(const FieldValue& value);

bool IsEmpty(const ReportValue& value);
// A number, or a text that reads as one ("," or "." before the decimals); none for anything else.
std::optional<double> NumberIn(const ReportValue& value);
double AsNumber(const ReportValue& value); // booleans as 1 and 0, numbers and numeric texts, anything else 0
