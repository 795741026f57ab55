#include "cli/GroupReport.h"

#include "core/session/HalvarnSession.h"

namespace {
QString Row(const QString& id, const QString& group, const QString& range, const QString& count, const QString& extra)
{
    return id.rightJustified(3) + QStringLiteral("  ") + group.leftJustified(42) + u' ' + range.leftJustified(18) + u' ' +
           count.rightJustified(6) + u' ' + extra.rightJustified(9) + u'\n';
}

QString GroupTable(const Table& table, const QString& title)
{
    QString text = title + u'\n' +
                   Row(QStringLiteral("ID"), QStringLiteral("Grupa technologiczna"), QStringLiteral("Zakres wieku"),
                       QString::fromUtf8("Ilość"), QStringLiteral("Inf. dod."));
    int total = 0;
    for (int row = 0; row < table.recordCount(); ++row) {
        total += AsInteger(table.at(row, 3));
        text += Row(DisplayText(table.at(row, 0)), DisplayText(table.at(row, 1)), DisplayText(table.at(row, 2)),
                    DisplayText(table.at(row, 3)), DisplayText(table.at(row, 4)));
    }
    return text + Row(QString(), QStringLiteral("Suma"), QString(), QString::number(total), QString());
}
} // namespace

QString GroupReport(HalvarnSession& session)
{
    WorkingTables& tables = session.tables();
    QString text = GroupTable(tables.mdGT00(), QString::fromUtf8("Ogółem – wszystkie stada (%1)").arg(session.herdCount));
    for (int slot = 1; slot < HerdSlotCount; ++slot) {
        const THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
        if (herd.Visible)
            text += u'\n' + GroupTable(*herd.GroupsTable, QStringLiteral("Stado ") + herd.Code);
    }
    return text;
}
