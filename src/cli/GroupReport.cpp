#include "cli/GroupReport.h"

#include "core/session/HalvarnSession.h"

using namespace Qt::StringLiterals;

namespace {
QString Row(const QString& id, const QString& group, const QString& range, const QString& count, const QString& extra)
{
    return id.rightJustified(3) + u"  "_s + group.leftJustified(42) + u' ' + range.leftJustified(18) + u' ' +
           count.rightJustified(6) + u' ' + extra.rightJustified(9) + u'\n';
}

QString GroupTable(const Table& table, const QString& title)
{
    QString text =
        title + u'\n' + Row(u"ID"_s, u"Grupa technologiczna"_s, u"Zakres wieku"_s, u"Ilość"_s, u"Inf. dod."_s);
    int total = 0;
    for (int row = 0; row < table.recordCount(); ++row) {
        total += AsInteger(table.at(row, 3));
        text += Row(DisplayText(table.at(row, 0)), DisplayText(table.at(row, 1)), DisplayText(table.at(row, 2)),
                    DisplayText(table.at(row, 3)), DisplayText(table.at(row, 4)));
    }
    return text + Row(QString(), u"Suma"_s, QString(), QString::number(total), QString());
}
} // namespace

QString GroupReport(HalvarnSession& session)
{
    WorkingTables& tables = session.tables();
    QString text = GroupTable(tables.mdGT00(), u"Ogółem – wszystkie stada (%1)"_s.arg(session.herdCount));
    for (int slot = 1; slot < HerdSlotCount; ++slot) {
        const THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
        if (herd.Visible)
            text += u'\n' + GroupTable(*herd.GroupsTable, u"Stado "_s + herd.Code);
    }
    return text;
}
