#pragma once

class QSqlDatabase;

inline constexpr int ArchiveSchemaVersion = 2;

// Brings the archive's tables to `version` (the newest by default), one step
// per version, each in a transaction of its own, and records the version
// reached in SQLite's user_version. An archive newer than this program knows
// is refused with ArchiveError; so is one whose steps fail.
void MigrateArchive(QSqlDatabase& database, int version = ArchiveSchemaVersion);

// The user_version of an open archive.
int ArchiveVersion(QSqlDatabase& database);
