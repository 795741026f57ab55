#pragma once

#include "analysis/AgeLimits.h"
#include "analysis/DeclaredLimits.h"
#include "core/tables/Field.h"

#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

#include <optional>

// How the working tables' values and the download's settings are kept in the
// archive's columns: dates as ISO text, booleans as 0/1, null as NULL.
QVariant ToColumn(const FieldValue& value);
FieldValue FromColumn(FieldType type, const QVariant& column);

QVariant TextColumn(const QString& text); // a null text as an empty one, which reads back equal
QVariant DateColumn(QDate date);          // NULL for an invalid date
QDate DateFromColumn(const QVariant& column);
QVariant OptionalBoolColumn(const std::optional<bool>& value);
std::optional<bool> OptionalBoolFromColumn(const QVariant& column);

QString AgeLimitsText(const AgeLimits& limits); // a JSON object by the settings' keys
QString LinesText(const QStringList& lines);    // a JSON array
QStringList LinesFromText(const QString& text);
QVariant DeclaredLimitsColumn(const std::optional<DeclaredLimits>& limits);
std::optional<DeclaredLimits> DeclaredLimitsFromColumn(const QVariant& column);

// Runs a prepared statement; a failure is an ArchiveError naming what was being done.
void ExecOrThrow(QSqlQuery& query, const QString& doing);
// A statement prepared on the archive, read forward only; a failure is an ArchiveError.
QSqlQuery PreparedQuery(const QSqlDatabase& database, const QString& statement);
// A statement with one "?" for the download's id, run and ready to read.
QSqlQuery SelectOfDownload(const QSqlDatabase& database, const QString& statement, qint64 id);
