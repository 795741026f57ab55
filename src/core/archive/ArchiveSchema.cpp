#include "core/archive/ArchiveSchema.h"

#include "core/archive/ArchiveError.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

#include <array>

using namespace Qt::StringLiterals;

namespace {
// The statements that take an archive from version n to n + 1. A step is never
// changed once released; a change of the tables is a new step.
const std::array<QStringList, ArchiveSchemaVersion> Steps{
    QStringList{
        uR"(CREATE TABLE downloads (
              id INTEGER PRIMARY KEY AUTOINCREMENT,
              producer TEXT NOT NULL, name TEXT NOT NULL,
              state_date TEXT, download_date TEXT, reference_date TEXT,
              downloaded_at TEXT NOT NULL,
              fattening INTEGER NOT NULL, suckler_cows INTEGER NOT NULL, dairy_cows INTEGER NOT NULL,
              age_limits TEXT NOT NULL,
              errors TEXT NOT NULL,
              herd_count INTEGER NOT NULL, animals INTEGER NOT NULL, incomplete_herds INTEGER NOT NULL))"_s,
        u"CREATE INDEX downloads_by_producer ON downloads (producer, id)"_s,
        uR"(CREATE TABLE herds (
              download INTEGER NOT NULL, slot INTEGER NOT NULL,
              code TEXT, list_index INTEGER, visible INTEGER, incomplete TEXT,
              PRIMARY KEY (download, slot)))"_s,
        uR"(CREATE TABLE animals (
              download INTEGER NOT NULL, row INTEGER NOT NULL, slot INTEGER NOT NULL,
              "NumerIdentyfikacyjny" TEXT, "Plec" TEXT, "DataUrodzenia" TEXT, "Wiek" INTEGER,
              "TypUzytkowy" TEXT, "KierunekUzytkowania" TEXT, "GdzieRozpatrzono" TEXT, "Rozpatrzono" TEXT,
              "CzyMatka" INTEGER, "STADO" TEXT, "ZAZNACZONE" INTEGER, "DataPrzybycia" TEXT,
              "DataWyrejestrowania" TEXT, "Rasa" TEXT, "RodzajDawczyni" TEXT, "RodzajDawcy" TEXT,
              "NumerDzialalnosci" TEXT, "NumerIdentyfikacyjnyMatki" TEXT, "NumerIdentyfikacyjnyDawczyni" TEXT,
              "NumerIdentyfikacyjnyDawcy" TEXT, "IloscOznakowan" TEXT,
              herd_rozpatrzono TEXT, herd_gdzie_rozpatrzono TEXT,
              sex_code TEXT, use_type_code TEXT, use_direction_code TEXT, list_mother INTEGER,
              PRIMARY KEY (download, row)))"_s,
        uR"(CREATE TABLE groups (
              download INTEGER NOT NULL, slot INTEGER NOT NULL, row INTEGER NOT NULL,
              "ID" INTEGER, "GT" TEXT, "ZakresWieku" TEXT, "Ilosc" INTEGER, "IloscPom" INTEGER,
              "IndDod" TEXT, "STADO" TEXT,
              PRIMARY KEY (download, slot, row)))"_s,
    },
    // The declared numbers and what a recount on another reference date needs.
    QStringList{
        u"ALTER TABLE downloads ADD COLUMN declared_limits TEXT"_s,
        u"ALTER TABLE downloads ADD COLUMN counting_lines_from INTEGER"_s,
        u"ALTER TABLE animals ADD COLUMN answer_mother INTEGER"_s,
        u"ALTER TABLE animals ADD COLUMN first_calf_birth TEXT"_s,
        u"ALTER TABLE groups ADD COLUMN \"Limit\" INTEGER"_s,
    },
};

void Execute(QSqlDatabase& database, const QString& statement)
{
    QSqlQuery query(database);
    if (!query.exec(statement))
        throw ArchiveError(u"Nie można przygotować archiwum: "_s + query.lastError().text());
}

void RunStep(QSqlDatabase& database, int from)
{
    if (!database.transaction())
        throw ArchiveError(u"Nie można przygotować archiwum: "_s + database.lastError().text());
    try {
        for (const QString& statement : Steps[static_cast<std::size_t>(from)])
            Execute(database, statement);
        Execute(database, u"PRAGMA user_version = %1"_s.arg(from + 1));
    } catch (...) {
        database.rollback();
        throw;
    }
    if (!database.commit())
        throw ArchiveError(u"Nie można przygotować archiwum: "_s + database.lastError().text());
}
} // namespace

int ArchiveVersion(QSqlDatabase& database)
{
    QSqlQuery query(database);
    if (!query.exec(u"PRAGMA user_version"_s) || !query.next())
        throw ArchiveError(u"Nie można odczytać archiwum: "_s + query.lastError().text());
    return query.value(0).toInt();
}

void MigrateArchive(QSqlDatabase& database, int version)
{
    const int current = ArchiveVersion(database);
    if (current > ArchiveSchemaVersion)
        throw ArchiveError(
            u"Archiwum pochodzi z nowszej wersji programu (wersja archiwum %1, obsługiwana %2). Zaktualizuj program."_s
                .arg(current)
                .arg(ArchiveSchemaVersion));
    for (int from = current; from < version; ++from)
        RunStep(database, from);
}
