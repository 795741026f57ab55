#pragma once

#include "framework/HalvarnError.h"
#include "reports/PreparedReport.h"

#include <QByteArray>

class PreparedReportError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// A prepared report in the program's own file format: the pages as they were
// laid out, so a saved print opens again without its template or its data.
QByteArray EncodePreparedReport(const PreparedReport& report);
PreparedReport DecodePreparedReport(const QByteArray& bytes); // throws PreparedReportError

// Through a temporary file renamed into place; throws FileWriteError.
void SavePreparedReport(const PreparedReport& report, const QString& path);
PreparedReport LoadPreparedReport(const QString& path); // throws PreparedReportError

// The extension of the files, without the dot.
inline constexpr char PreparedReportSuffix[] = "hrp";
