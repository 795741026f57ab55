#include "core/archive/ArchiveTables.h"

#include "core/archive/ArchiveError.h"
#include "core/archive/ArchiveValues.h"
#include "core/session/HalvarnSession.h"

#include <QScopeGuard>
#include <QSqlError>

using namespace Qt::StringLiterals;

namespace {
// The columns after a table's own fields in "animals": the herd table's marks
// and what the registry said of the animal.
const QStringList AnswerColumns{u"herd_rozpatrzono"_s, u"herd_gdzie_rozpatrzono"_s, u"sex_code"_s,
                                u"use_type_code"_s,    u"use_direction_code"_s,     u"list_mother"_s,
                                u"answer_mother"_s,    u"first_calf_birth"_s};

QStringList FieldColumns(const Table& table)
{
    QStringList columns;
    for (const FieldDef& field : table.fields())
        columns.append(u'"' + field.name + u'"');
    return columns;
}

QString InsertStatement(const QString& table, const QStringList& columns)
{
    QStringList marks;
    marks.fill(u"?"_s, columns.size());
    return u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(table, columns.join(u','), marks.join(u','));
}

QVariant CalfBirthColumn(const std::optional<QDate>& birth)
{
    if (!birth)
        return {};
    return birth->isValid() ? DateColumn(*birth) : QVariant(QString(u""_s));
}

std::optional<QDate> CalfBirthFromColumn(const QVariant& column)
{
    if (column.isNull())
        return std::nullopt;
    return DateFromColumn(column);
}

void InsertHerds(QSqlDatabase& database, qint64 id, const WorkingTables& tables)
{
    QSqlQuery query =
        PreparedQuery(database, InsertStatement(u"herds"_s, {u"download"_s, u"slot"_s, u"code"_s, u"list_index"_s,
                                                             u"visible"_s, u"incomplete"_s}));
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
        for (const QVariant& value : {QVariant(id), QVariant(slot), TextColumn(herd.Code), QVariant(herd.Index),
                                      QVariant(herd.Visible ? 1 : 0), TextColumn(herd.Incomplete)})
            query.addBindValue(value);
        ExecOrThrow(query, u"Błąd zapisu stada do archiwum"_s);
    }
}

void InsertAnimals(QSqlDatabase& database, qint64 id, HalvarnSession& session)
{
    WorkingTables& tables = session.tables();
    const Table& summary = tables.mdRZ00();
    if (session.answers.size() != static_cast<std::size_t>(summary.recordCount()))
        throw ArchiveError(u"Brak odpowiedzi rejestru dla części zwierząt; pobranie nie zostało zarchiwizowane"_s);
    QSqlQuery query =
        PreparedQuery(database, InsertStatement(u"animals"_s, QStringList{u"download"_s, u"row"_s, u"slot"_s} +
                                                                  FieldColumns(summary) + AnswerColumns));
    const int rozpatrzono = tables.mdRZ(1).requireField(u"Rozpatrzono");
    const int gdzie = tables.mdRZ(1).requireField(u"GdzieRozpatrzono");
    std::array<int, HerdSlotCount> herdRow{};
    for (int row = 0; row < summary.recordCount(); ++row) {
        const AnimalAnswer& answer = session.answers[static_cast<std::size_t>(row)];
        const Table& herd = tables.mdRZ(answer.slot);
        const int inHerd = herdRow[static_cast<std::size_t>(answer.slot)]++;
        query.addBindValue(id);
        query.addBindValue(row);
        query.addBindValue(answer.slot);
        for (int field = 0; field < summary.fieldCount(); ++field)
            query.addBindValue(ToColumn(summary.at(row, field)));
        query.addBindValue(ToColumn(herd.at(inHerd, rozpatrzono)));
        query.addBindValue(ToColumn(herd.at(inHerd, gdzie)));
        for (const QVariant& value : {TextColumn(answer.sexCode), TextColumn(answer.useType),
                                      TextColumn(answer.useDirection), QVariant(answer.listMother ? 1 : 0),
                                      OptionalBoolColumn(answer.answerMother), CalfBirthColumn(answer.firstCalfBirth)})
            query.addBindValue(value);
        ExecOrThrow(query, u"Błąd zapisu zwierzęcia do archiwum"_s);
    }
}

void InsertGroups(QSqlDatabase& database, qint64 id, WorkingTables& tables)
{
    QSqlQuery query =
        PreparedQuery(database, InsertStatement(u"groups"_s, QStringList{u"download"_s, u"slot"_s, u"row"_s} +
                                                                 FieldColumns(tables.mdGT00())));
    for (int slot = 0; slot < HerdSlotCount; ++slot) {
        const Table& groups = tables.mdGT(slot);
        for (int row = 0; row < groups.recordCount(); ++row) {
            query.addBindValue(id);
            query.addBindValue(slot);
            query.addBindValue(row);
            for (int field = 0; field < groups.fieldCount(); ++field)
                query.addBindValue(ToColumn(groups.at(row, field)));
            ExecOrThrow(query, u"Błąd zapisu grup do archiwum"_s);
        }
    }
}

void ReadHerds(QSqlDatabase& database, qint64 id, WorkingTables& tables)
{
    QSqlQuery query = SelectOfDownload(
        database, u"SELECT slot, code, list_index, visible, incomplete FROM herds WHERE download = ?"_s, id);
    while (query.next()) {
        const int slot = query.value(0).toInt();
        if (slot < 0 || slot >= HerdSlotCount)
            continue;
        THerdSlot& herd = tables.HerdSlots[static_cast<std::size_t>(slot)];
        herd.Code = query.value(1).toString();
        herd.Index = query.value(2).toInt();
        herd.Visible = query.value(3).toInt() != 0;
        herd.Incomplete = query.value(4).toString();
    }
}

// Appends one row to a table with the values the query holds from `first` on.
void AppendRow(Table& table, const QSqlQuery& query, int first)
{
    table.append();
    for (int field = 0; field < table.fieldCount(); ++field)
        table.setValue(field,
                       FromColumn(table.fields()[static_cast<std::size_t>(field)].type, query.value(first + field)));
    table.post();
}

AnimalAnswer AnswerAt(const QSqlQuery& query, int first, int slot)
{
    AnimalAnswer answer;
    answer.slot = slot;
    answer.sexCode = query.value(first + 2).toString();
    answer.useType = query.value(first + 3).toString();
    answer.useDirection = query.value(first + 4).toString();
    answer.listMother = query.value(first + 5).toInt() != 0;
    answer.answerMother = OptionalBoolFromColumn(query.value(first + 6));
    answer.firstCalfBirth = CalfBirthFromColumn(query.value(first + 7));
    return answer;
}

// For each field of a herd table, the field of mdRZ00 it copies.
std::vector<int> HerdFieldsInSummary(WorkingTables& tables)
{
    std::vector<int> fields;
    for (const FieldDef& field : tables.mdRZ(1).fields())
        fields.push_back(tables.mdRZ00().requireField(field.name));
    return fields;
}

void ReadAnimals(QSqlDatabase& database, qint64 id, HalvarnSession& session)
{
    WorkingTables& tables = session.tables();
    Table& summary = tables.mdRZ00();
    const QStringList columns = QStringList{u"slot"_s} + FieldColumns(summary) + AnswerColumns;
    QSqlQuery query = SelectOfDownload(
        database, u"SELECT %1 FROM animals WHERE download = ? ORDER BY row"_s.arg(columns.join(u',')), id);
    const int answers = 1 + summary.fieldCount();
    const std::vector<int> herdFields = HerdFieldsInSummary(tables);
    const int rozpatrzono = tables.mdRZ(1).requireField(u"Rozpatrzono");
    const int gdzie = tables.mdRZ(1).requireField(u"GdzieRozpatrzono");
    while (query.next()) {
        const int slot = query.value(0).toInt();
        if (slot < 1 || slot >= HerdSlotCount)
            throw ArchiveError(u"Archiwum jest uszkodzone: zwierzę w stadzie spoza zakładek (%1)"_s.arg(slot));
        AppendRow(summary, query, 1);
        const int row = summary.recordCount() - 1;
        Table& herd = tables.mdRZ(slot);
        herd.append();
        for (std::size_t field = 0; field < herdFields.size(); ++field)
            herd.setValue(static_cast<int>(field), summary.at(row, herdFields[field]));
        herd.setValue(rozpatrzono, FromColumn(FieldType::String, query.value(answers)));
        herd.setValue(gdzie, FromColumn(FieldType::String, query.value(answers + 1)));
        herd.post();
        session.answers.push_back(AnswerAt(query, answers, slot));
    }
}

void ReadGroups(QSqlDatabase& database, qint64 id, WorkingTables& tables)
{
    const QStringList columns = QStringList{u"slot"_s} + FieldColumns(tables.mdGT00());
    QSqlQuery query = SelectOfDownload(
        database, u"SELECT %1 FROM groups WHERE download = ? ORDER BY slot, row"_s.arg(columns.join(u',')), id);
    while (query.next()) {
        const int slot = query.value(0).toInt();
        if (slot >= 0 && slot < HerdSlotCount)
            AppendRow(tables.mdGT(slot), query, 1);
    }
}

// Lifts every animal and group table's read-only switch while the rows go in.
template <class Fill> void Writable(WorkingTables& tables, Fill&& fill)
{
    std::vector<Table*> written;
    for (int slot = 0; slot < HerdSlotCount; ++slot)
        for (Table* table : {&tables.mdRZ(slot), &tables.mdGT(slot)}) {
            tables.ClearTable(*table);
            table->setReadOnly(false);
            written.push_back(table);
        }
    const auto restore = qScopeGuard([&] {
        for (Table* table : written)
            tables.restoreReadOnly(*table);
    });
    fill();
}
} // namespace

void InsertDownloadRows(QSqlDatabase& database, qint64 id, HalvarnSession& session)
{
    InsertHerds(database, id, session.tables());
    InsertAnimals(database, id, session);
    InsertGroups(database, id, session.tables());
}

void ReadDownloadRows(QSqlDatabase& database, qint64 id, HalvarnSession& session)
{
    WorkingTables& tables = session.tables();
    ReadHerds(database, id, tables);
    Writable(tables, [&] {
        ReadAnimals(database, id, session);
        ReadGroups(database, id, tables);
    });
}
