#pragma once

#include "framework/HalvarnError.h"
#include "reports/ReportModel.h"

#include <QByteArray>

// A template that cannot be read: the message names the file and, for an XML
// fault, its line and column.
class TemplateError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// Reads a band template. Unknown elements and attributes are skipped; objects
// the engine cannot draw are listed in ReportTemplate::unsupported.
ReportTemplate ReadTemplate(const QString& path);
ReportTemplate ReadTemplateData(const QByteArray& xml, const QString& path);
