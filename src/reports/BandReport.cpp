#include "reports/BandReport.h"

#include "reports/TemplateReader.h"

void BandReport::loadFromFile(const QString& path)
{
    report_ = ReadTemplate(path);
}

PreparedReport BandReport::prepare(const std::vector<DataLinkBinding>& links, const QDateTime& printedAt) const
{
    return PrepareReport(report_, links, printedAt);
}
