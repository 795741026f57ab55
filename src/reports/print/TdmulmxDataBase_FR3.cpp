#include "reports/print/TdmulmxDataBase_FR3.h"

#include "core/tables/WorkingTables.h"

using namespace Qt::StringLiterals;

TdmulmxDataBase_FR3::TdmulmxDataBase_FR3()
{
    for (int n = 1; n <= LinkCount; ++n)
        frxDBDataset(n).name = u"frxDBDataset%1"_s.arg(n);
}

void TdmulmxDataBase_FR3::ResetReportLinks(WorkingTables& tables)
{
    for (DataLinkBinding& link : links_)
        link.table = nullptr;
    for (int n = 1; n <= HerdLinkCount; ++n)
        frxDBDataset(n).table = &tables.mdEmpty();
    frxDBDataset(ProducerLink).table = &tables.mdProducent();
}

DataLinkBinding* TdmulmxDataBase_FR3::HerdLink(int n)
{
    return n >= 1 && n <= HerdLinkCount ? &frxDBDataset(n) : nullptr;
}

void TdmulmxDataBase_FR3::AddHerdSection(const Table& table, const QString& herdCode, int& position, bool& headerDone)
{
    if (DataLinkBinding* link = HerdLink(position))
        link->table = &table;
    if (ReportObject* caption = frxReport.findObject(u"MV%1"_s.arg(position)))
        caption->text = u"Stado: "_s + herdCode;
    if (!headerDone)
        if (ReportBand* header = frxReport.findBand(u"Header%1"_s.arg(position)))
            header->startNewPage = false;
    headerDone = true;
    ++position;
}

PreparedReport TdmulmxDataBase_FR3::prepare() const
{
    return frxReport.prepare({links_.begin(), links_.end()});
}
