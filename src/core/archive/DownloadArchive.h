#pragma once

#include "core/archive/ArchiveError.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <vector>

class HalvarnSession;
struct DownloadSnapshot;
class QSqlDatabase;

// One stored download as the archive's list shows it.
struct ArchivedDownload {
    qint64 id = 0;
    QString producer;
    QString name;
    QDate stateDate;
    QDate referenceDate;
    QDateTime downloadedAt;
    int animals = 0;
    int incompleteHerds = 0;
};

// The archive of downloads: one SQLite file in the data folder holding every
// download that ran to its end, with its tables as the download left them and
// what the registry said of each animal, so the data can be opened, printed and
// recounted without the registry. Each download is written in one transaction,
// so a crash leaves the archive as it was. Passwords are never stored.
class DownloadArchive {
public:
    // Opens the file, creating it or bringing an older one up to date.
    explicit DownloadArchive(const QString& path);
    ~DownloadArchive();
    DownloadArchive(const DownloadArchive&) = delete;
    DownloadArchive& operator=(const DownloadArchive&) = delete;

    // Stores the session's loaded data and keeps only the newest `keep`
    // downloads of its producer. Gives the new download's id.
    qint64 store(HalvarnSession& session, int keep);
    // Newest first; only the producer's when one is named.
    std::vector<ArchivedDownload> list(const QString& producer = {}) const;
    // Throws ArchiveError when there is no such download.
    ArchivedDownload find(qint64 id) const;
    void remove(qint64 id);
    // Puts the download into the session's tables, herd slots and memo exactly
    // as the download left them; the session must have been cleared.
    void load(qint64 id, HalvarnSession& session) const;
    // The few columns a comparison needs of a stored download, read without a session.
    DownloadSnapshot snapshot(const ArchivedDownload& download) const;

private:
    QSqlDatabase database() const;
    void removeWithin(qint64 id);
    void pruneWithin(const QString& producer, int keep);

    QString connection_;
};
