#include "core/session/SessionRestore.h"

#include "core/session/HalvarnSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {
QJsonObject ParseDump(const QByteArray& json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        throw SessionDumpError(
            u"Plik stanu nie jest poprawnym zrzutem: błąd JSON przy znaku %1 (%2)"_s.arg(error.offset + 1)
                .arg(error.errorString()));
    if (!document.isObject())
        throw SessionDumpError(u"Plik stanu nie jest poprawnym zrzutem: oczekiwano obiektu JSON"_s);
    return document.object();
}

FieldValue FromJson(FieldType type, const QJsonValue& value)
{
    switch (type) {
    case FieldType::String:
    case FieldType::Memo:
        if (value.isString())
            return value.toString();
        break;
    case FieldType::Int16:
    case FieldType::Int32:
        if (value.isDouble())
            return static_cast<qint32>(value.toInteger());
        break;
    case FieldType::Date:
        if (value.isString())
            return QDate::fromString(value.toString(), u"yyyy-MM-dd");
        break;
    case FieldType::Boolean:
        if (value.isBool())
            return value.toBool();
        break;
    }
    return {};
}

void AppendRow(Table& table, const QJsonObject& row)
{
    table.append();
    for (auto value = row.begin(); value != row.end(); ++value) {
        const int field = table.fieldIndex(value.key());
        if (field >= 0)
            table.setValue(field, FromJson(table.fields()[static_cast<std::size_t>(field)].type, value.value()));
    }
    table.post();
}

// Writes with the read-only switch lifted and sets it back as it was: restoreReadOnly
// would also lock mdTUKU and mdRaport1, which are writable.
void Refill(Table& table, const QJsonArray& rows)
{
    const bool readOnly = table.readOnly();
    table.open();
    table.setReadOnly(false);
    table.disableControls();
    const auto restore = qScopeGuard([&table, readOnly] {
        table.enableControls();
        table.setReadOnly(readOnly);
    });
    table.removeAll();
    for (const QJsonValue& row : rows)
        AppendRow(table, row.toObject());
}

void RestoreSlots(WorkingTables& tables, const QJsonArray& dumped)
{
    for (const QJsonValue& value : dumped) {
        const QJsonObject slot = value.toObject();
        const int index = slot.value(u"slot"_s).toInt(-1);
        if (index < 0 || index >= HerdSlotCount)
            continue;
        THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(index)];
        herd.Code = slot.value(u"code"_s).toString();
        herd.Index = slot.value(u"index"_s).toInt();
        herd.Visible = slot.value(u"visible"_s).toBool();
    }
}
} // namespace

void RestoreSessionJson(HalvarnSession& session, const QByteArray& json)
{
    const QJsonObject root = ParseDump(json);
    session.herdCount = root.value(u"herdCount"_s).toInt();
    RestoreSlots(session.tables(), root.value(u"slots"_s).toArray());
    const QJsonObject tables = root.value(u"tables"_s).toObject();
    for (auto dumped = tables.begin(); dumped != tables.end(); ++dumped)
        if (Table* table = session.tables().byName(dumped.key()))
            Refill(*table, dumped.value().toArray());
}
