#pragma once

#include "reports/ReportModel.h"
#include "reports/ReportValue.h"

// The text of a value as a memo shows it: with the memo's display format (or
// an inline "#n…", "#d…", "#b…" format of an expression), else as it is.
QString FormatValue(const ReportValue& value, const DisplayFormat& format, bool hideZeros = false);

// A value without a display format.
QString DefaultText(const ReportValue& value);

// The format an inline "#n%2.0f", "#d dd.mm.yyyy" or "#b Tak,Nie" stands for.
DisplayFormat InlineFormat(QStringView formatAfterHash);
