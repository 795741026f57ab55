#include "core/session/SessionDump.h"

#include "core/session/HalvarnSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {
QJsonValue ToJson(const FieldValue& value)
{
    if (const auto* text = std::get_if<QString>(&value))
        return *text;
    if (const auto* number = std::get_if<qint32>(&value))
        return *number;
    if (const auto* date = std::get_if<QDate>(&value))
        return date->toString(u"yyyy-MM-dd");
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    return QJsonValue::Null;
}

QJsonArray TableRows(const Table& table)
{
    QJsonArray rows;
    for (int row = 0; row < table.recordCount(); ++row) {
        QJsonObject object;
        for (int field = 0; field < table.fieldCount(); ++field)
            object.insert(table.fields()[static_cast<std::size_t>(field)].name, ToJson(table.at(row, field)));
        rows.append(object);
    }
    return rows;
}
} // namespace

QByteArray DumpSessionJson(HalvarnSession& session, const std::vector<ShownMessage>& messages)
{
    QJsonArray slots;
    for (int i = 0; i < HerdSlotCount; ++i) {
        const THerdSlot& slot = session.tables().HerdSlots[static_cast<std::size_t>(i)];
        slots.append(QJsonObject{
            {u"slot"_s, i}, {u"code"_s, slot.Code}, {u"index"_s, slot.Index}, {u"visible"_s, slot.Visible}});
    }
    QJsonObject tables;
    for (const Table* table : session.tables().all())
        tables.insert(table->name(), TableRows(*table));
    QJsonArray shown;
    for (const ShownMessage& message : messages)
        shown.append(QJsonObject{{u"caption"_s, message.caption}, {u"text"_s, message.text}});
    const QJsonObject root{{u"herdCount"_s, session.herdCount},
                           {u"slots"_s, slots},
                           {u"tables"_s, tables},
                           {u"errors"_s, QJsonArray::fromStringList(session.errors())},
                           {u"loaded"_s, session.loaded()},
                           {u"messages"_s, shown}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}
