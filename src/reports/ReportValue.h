#pragma once

#include "core/tables/Field.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>

#include <variant>

// A value inside a report expression. Every number is a double, as in the
// templates' own expression language; a field that is null is monostate.
using ReportValue = std::variant<std::monostate, QString, double, QDate, QTime, QDateTime, bool>;

ReportValue FromField(const FieldValue& value);

bool IsEmpty(const ReportValue& value);
double AsNumber(const ReportValue& value); // texts that are numbers count, anything else is 0
