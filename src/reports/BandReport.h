#pragma once

#include "reports/ReportLayout.h"

// One report: the template it loaded, and the objects the program sets by
// name before preparing the pages. A report without a template is an empty A4
// page with the program's default margins.
class BandReport {
public:
    void loadFromFile(const QString& path); // throws TemplateError
    void setTemplate(ReportTemplate report) { report_ = std::move(report); }

    const ReportTemplate& report() const { return report_; }
    ReportObject* findObject(const QString& name) { return report_.findObject(name); }
    ReportBand* findBand(const QString& name) { return report_.findBand(name); }

    PreparedReport prepare(const std::vector<DataLinkBinding>& links,
                           const QDateTime& printedAt = QDateTime::currentDateTime()) const;

private:
    ReportTemplate report_;
};
