#pragma once

#include "framework/HalvarnError.h"
#include "reports/ReportModel.h"

#include <QByteArray>

// A template that cannot be read: the message names the file and, for an XML
// fault, its line and column.
class TemplateError : public HalvarnError {
public:
    explicit TemplateError(const QString& message, qint64 line = 0, qint64 column = 0)
        : HalvarnError(message), line_(line), column_(column)
    {}
    qint64 line() const { return line_; } // 0 when the fault is not at a place in the text
    qint64 column() const { return column_; }

private:
    qint64 line_;
    qint64 column_;
};

// Reads a band template. Unknown elements and attributes are skipped; objects
// the engine cannot draw are listed in ReportTemplate::unsupported.
ReportTemplate ReadTemplate(const QString& path);
ReportTemplate ReadTemplateData(const QByteArray& xml, const QString& path);
