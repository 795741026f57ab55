#pragma once

#include <QSqlDatabase>

class HalvarnSession;

// The rows of one download: written by the archive inside its transaction,
// read back into a cleared session.
void InsertDownloadRows(QSqlDatabase& database, qint64 id, HalvarnSession& session);
void ReadDownloadRows(QSqlDatabase& database, qint64 id, HalvarnSession& session);
