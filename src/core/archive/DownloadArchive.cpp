#include "core/archive/DownloadArchive.h"

#include "analysis/AgeLimits.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/ArchiveTables.h"
#include "core/archive/ArchiveValues.h"
#include "core/archive/DownloadSnapshot.h"
#include "core/session/HalvarnSession.h"
#include "framework/IniFile.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {
const QString Columns = u"id, producer, name, state_date, reference_date, downloaded_at, animals, incomplete_herds"_s;

ArchivedDownload ListedAt(const QSqlQuery& query)
{
    return {query.value(0).toLongLong(),    query.value(1).toString(),
            query.value(2).toString(),      DateFromColumn(query.value(3)),
            DateFromColumn(query.value(4)), QDateTime::fromString(query.value(5).toString(), Qt::ISODate),
            query.value(6).toInt(),         query.value(7).toInt()};
}

// Rolls back whatever was written unless committed.
class Transaction {
public:
    explicit Transaction(QSqlDatabase& database) : database_(database)
    {
        if (!database_.transaction())
            throw ArchiveError(u"Nie można zapisać archiwum: "_s + database_.lastError().text());
    }
    ~Transaction()
    {
        if (!committed_)
            database_.rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit()
    {
        if (!database_.commit())
            throw ArchiveError(u"Nie można zapisać archiwum: "_s + database_.lastError().text());
        committed_ = true;
    }

private:
    QSqlDatabase& database_;
    bool committed_ = false;
};

int IncompleteHerds(const WorkingTables& tables)
{
    int count = 0;
    for (const THerdSlot& herd : tables.HerdSlots)
        count += herd.Incomplete.isEmpty() ? 0 : 1;
    return count;
}

qint64 InsertDownload(QSqlDatabase& database, HalvarnSession& session)
{
    const Table& producer = session.tables().mdProducent();
    const auto header = [&producer](const char* field) {
        return producer.isEmpty() ? FieldValue{} : producer.value(QLatin1String(field));
    };
    QSqlQuery query =
        PreparedQuery(database, uR"(INSERT INTO downloads (producer, name, state_date, download_date, reference_date,
        downloaded_at, fattening, suckler_cows, dairy_cows, age_limits, errors, herd_count, animals, incomplete_herds,
        declared_limits, counting_lines_from) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?))"_s);
    const WelfareFlags flags = session.halvarnFlags;
    for (const QVariant& value :
         {TextColumn(AsString(header("PRODUCENT"))), TextColumn(AsString(header("NAZWA"))),
          DateColumn(AsDate(header("DATA1"))), DateColumn(AsDate(header("DATA2"))), DateColumn(AsDate(header("DATA3"))),
          QVariant(QDateTime::currentDateTime().toString(Qt::ISODate)), QVariant(flags.opasow ? 1 : 0),
          QVariant(flags.krowMamek ? 1 : 0), QVariant(flags.krowMlecznych ? 1 : 0),
          QVariant(AgeLimitsText(AgeLimits::read(IniFile(session.dataFolder().settingsFile())))),
          QVariant(LinesText(session.errors())), QVariant(session.herdCount),
          QVariant(session.tables().mdRZ00().recordCount()), QVariant(IncompleteHerds(session.tables())),
          DeclaredLimitsColumn(session.countedLimits), QVariant(session.countingLinesFrom)})
        query.addBindValue(value);
    ExecOrThrow(query, u"Błąd zapisu pobrania do archiwum"_s);
    return query.lastInsertId().toLongLong();
}

void ReadDownloadHeader(HalvarnSession& session, const QSqlQuery& download)
{
    SessionInputs& inputs = session.inputs;
    inputs.producerNumber = download.value(u"producer"_s).toString();
    inputs.producerName = download.value(u"name"_s).toString();
    inputs.stateDate = DateFromColumn(download.value(u"state_date"_s));
    inputs.referenceDate = session.referenceDate = DateFromColumn(download.value(u"reference_date"_s));
    inputs.flags = {.krowMamek = download.value(u"suckler_cows"_s).toInt() != 0,
                    .opasow = download.value(u"fattening"_s).toInt() != 0,
                    .krowMlecznych = download.value(u"dairy_cows"_s).toInt() != 0};
    session.halvarnFlags = inputs.flags;
    session.countedLimits = DeclaredLimitsFromColumn(download.value(u"declared_limits"_s));
    const QVariant countingLines = download.value(u"counting_lines_from"_s);
    session.countingLinesFrom = countingLines.isNull() ? -1 : countingLines.toInt();
    session.herdCount = download.value(u"herd_count"_s).toInt();
    session.archivedAt = QDateTime::fromString(download.value(u"downloaded_at"_s).toString(), Qt::ISODate);
    session.tables().WriteProducerHeader({inputs.producerNumber, inputs.stateDate,
                                          DateFromColumn(download.value(u"download_date"_s)), inputs.referenceDate,
                                          inputs.producerName});
    for (const QString& line : LinesFromText(download.value(u"errors"_s).toString()))
        session.appendError(line);
}
} // namespace

DownloadArchive::DownloadArchive(const QString& path) : connection_(QUuid::createUuid().toString())
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection_);
    database.setDatabaseName(path);
    if (!database.open())
        throw ArchiveError(u"Nie można otworzyć archiwum %1: %2"_s.arg(path, database.lastError().text()));
    MigrateArchive(database);
}

DownloadArchive::~DownloadArchive()
{
    database().close();
    QSqlDatabase::removeDatabase(connection_);
}

QSqlDatabase DownloadArchive::database() const
{
    return QSqlDatabase::database(connection_, false);
}

qint64 DownloadArchive::store(HalvarnSession& session, int keep)
{
    QSqlDatabase db = database();
    Transaction transaction(db);
    const qint64 id = InsertDownload(db, session);
    InsertDownloadRows(db, id, session);
    pruneWithin(AsString(session.tables().mdProducent().value(u"PRODUCENT")), keep);
    transaction.commit();
    return id;
}

std::vector<ArchivedDownload> DownloadArchive::list(const QString& producer) const
{
    QSqlQuery query = PreparedQuery(database(), u"SELECT %1 FROM downloads %2 ORDER BY id DESC"_s.arg(
                                                    Columns, producer.isEmpty() ? QString() : u"WHERE producer = ?"_s));
    if (!producer.isEmpty())
        query.addBindValue(producer);
    ExecOrThrow(query, u"Błąd odczytu archiwum"_s);
    std::vector<ArchivedDownload> downloads;
    while (query.next())
        downloads.push_back(ListedAt(query));
    return downloads;
}

ArchivedDownload DownloadArchive::find(qint64 id) const
{
    QSqlQuery query = PreparedQuery(database(), u"SELECT %1 FROM downloads WHERE id = ?"_s.arg(Columns));
    query.addBindValue(id);
    ExecOrThrow(query, u"Błąd odczytu archiwum"_s);
    if (!query.next())
        throw ArchiveError(u"Nie ma w archiwum pobrania nr %1"_s.arg(id));
    return ListedAt(query);
}

void DownloadArchive::remove(qint64 id)
{
    QSqlDatabase db = database();
    Transaction transaction(db);
    removeWithin(id);
    transaction.commit();
}

void DownloadArchive::removeWithin(qint64 id)
{
    for (const QString& table : {u"animals"_s, u"groups"_s, u"herds"_s}) {
        QSqlQuery query = PreparedQuery(database(), u"DELETE FROM %1 WHERE download = ?"_s.arg(table));
        query.addBindValue(id);
        ExecOrThrow(query, u"Błąd usuwania z archiwum"_s);
    }
    QSqlQuery query = PreparedQuery(database(), u"DELETE FROM downloads WHERE id = ?"_s);
    query.addBindValue(id);
    ExecOrThrow(query, u"Błąd usuwania z archiwum"_s);
}

// The producer's downloads after the newest `keep` go.
void DownloadArchive::pruneWithin(const QString& producer, int keep)
{
    QSqlQuery query =
        PreparedQuery(database(), u"SELECT id FROM downloads WHERE producer = ? ORDER BY id DESC LIMIT -1 OFFSET ?"_s);
    query.addBindValue(producer);
    query.addBindValue(keep);
    ExecOrThrow(query, u"Błąd odczytu archiwum"_s);
    std::vector<qint64> old;
    while (query.next())
        old.push_back(query.value(0).toLongLong());
    for (qint64 id : old)
        removeWithin(id);
}

void DownloadArchive::load(qint64 id, HalvarnSession& session) const
{
    QSqlDatabase db = database();
    QSqlQuery download = PreparedQuery(db, u"SELECT * FROM downloads WHERE id = ?"_s);
    download.addBindValue(id);
    ExecOrThrow(download, u"Błąd odczytu archiwum"_s);
    if (!download.next())
        throw ArchiveError(u"Nie ma w archiwum pobrania nr %1"_s.arg(id));
    ReadDownloadHeader(session, download);
    ReadDownloadRows(db, id, session);
    session.DataLoaded = true;
}

DownloadSnapshot DownloadArchive::snapshot(const ArchivedDownload& download) const
{
    DownloadSnapshot snapshot{download, {}, {}};
    QSqlQuery animals = SelectOfDownload(database(), uR"(SELECT "NumerIdentyfikacyjny", "STADO", "Plec",
        "DataUrodzenia", "Wiek", "GdzieRozpatrzono" FROM animals WHERE download = ? ORDER BY row)"_s,
                                         download.id);
    while (animals.next()) {
        const QVariant age = animals.value(4);
        snapshot.animals.push_back({animals.value(0).toString(), animals.value(1).toString(),
                                    animals.value(2).toString(), DateFromColumn(animals.value(3)),
                                    age.isNull() ? std::nullopt : std::optional<int>(age.toInt()),
                                    animals.value(5).toString()});
    }
    QSqlQuery groups = SelectOfDownload(
        database(),
        uR"(SELECT "ID", "GT", "Ilosc", "IloscPom" FROM groups WHERE download = ? AND slot = 0 ORDER BY row)"_s,
        download.id);
    while (groups.next())
        snapshot.groups.push_back(
            {groups.value(0).toInt(), groups.value(1).toString(), groups.value(2).toInt() + groups.value(3).toInt()});
    return snapshot;
}
