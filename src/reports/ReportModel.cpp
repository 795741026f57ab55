#include "reports/ReportModel.h"

namespace {
ReportObject* FindIn(std::vector<ReportObject>& objects, const QString& name)
{
    for (ReportObject& object : objects)
        if (object.name.compare(name, Qt::CaseInsensitive) == 0)
            return &object;
    return nullptr;
}
} // namespace

ReportObject* ReportTemplate::findObject(const QString& name)
{
    for (ReportPage& page : pages) {
        if (ReportObject* found = FindIn(page.pageObjects, name))
            return found;
        for (ReportBand& band : page.bands)
            if (ReportObject* found = FindIn(band.objects, name))
                return found;
    }
    return nullptr;
}

ReportBand* ReportTemplate::findBand(const QString& name)
{
    for (ReportPage& page : pages)
        for (ReportBand& band : page.bands)
            if (band.name.compare(name, Qt::CaseInsensitive) == 0)
                return &band;
    return nullptr;
}
