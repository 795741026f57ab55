#pragma once

#include "analysis/DeclaredLimits.h"
#include "analysis/WelfareFlags.h"
#include "core/session/AnimalAnswer.h"
#include "core/tables/WorkingTables.h"
#include "framework/DataFolder.h"
#include "framework/OperationHost.h"

#include <QDate>
#include <QDateTime>
#include <QStringList>

#include <optional>

// The fields of the window that commands read: log-in, producer, dates, ticks.
struct SessionInputs {
    QString login;
    QString password;
    QString producerNumber;
    QString producerName;
    QDate stateDate;     // "Stan zwierząt na dzień"
    QDate referenceDate; // "Halvarn na dzień"
    WelfareFlags flags;
    // The maximum numbers the producer declared, for a producer taken from the
    // producer list; none for one typed by hand, whose counts are not checked.
    std::optional<DeclaredLimits> declaredLimits;
};

struct ProgressBar {
    int position = 0;
    int maximum = 100;
};

// The data half of the main window: working tables, herd slots, the state of a
// run and the long-operation frame (status, progress, memos) reported to a host.
class HalvarnSession {
public:
    HalvarnSession(DataFolder folder, OperationHost& host);

    WorkingTables& tables() { return tables_; }
    OperationHost& host() { return host_; }
    const DataFolder& dataFolder() const { return folder_; }

    SessionInputs inputs;
    CommonSettings common;

    // Credentials of the registry, taken by GatherCredentials.
    QString Login;
    QString Password;
    QString ProducerNumber;

    int herdCount = 0;
    bool Loading = false;
    bool DataLoaded = false;
    WelfareFlags halvarnFlags; // the ticks as the running operation read them
    QDate referenceDate;       // the reference date the last download used
    // What the registry said of each animal, one per row of mdRZ00, in its order;
    // among it the codes of use type and direction a change notice sends (the tables hold descriptions).
    std::vector<AnimalAnswer> answers;
    // The declared numbers the loaded data was checked against; none for a producer typed by hand.
    std::optional<DeclaredLimits> countedLimits;
    int countingLinesFrom = -1; // where the lines of the counting start in the errors; -1 before one
    QDateTime archivedAt;       // when the loaded data was downloaded, for data opened from the archive

    void GatherCredentials();
    void ReadHalvarnFlags() { halvarnFlags = inputs.flags; }

    void BeginLongOperation();
    void EndLongOperation();
    void SetStatusMode(bool busy, bool showHerd);
    void SetStatusText(StatusPanel panel, const QString& text);
    void setProgress(int bar, int position, int maximum);
    void stepProgress(int bar);
    const ProgressBar& progress(int bar) const { return progress_[bar == 1 ? 0 : 1]; }
    bool busy() const { return busy_; }

    void appendError(const QString& line);
    void appendLoaded(const QString& text);
    const QStringList& errors() const { return errors_; }
    // Drops the error lines from this one on (none for -1), as the host shows them too.
    void truncateErrors(int count);
    const QString& loaded() const { return loaded_; }

    // Empties every animal and group table, hides the herd tabs and rebuilds
    // the group catalogue with the ticks as they are now, so that the catalogue
    // and the counting of the download that follows always agree.
    void ClearAllData();
    // Empties the group tables and builds the catalogue again with the ticks the running operation read.
    void RebuildGroups();

private:
    void buildCatalogue();
    void setControlsLocked(bool locked);

    DataFolder folder_;
    OperationHost& host_;
    WorkingTables tables_;
    ProgressBar progress_[2];
    bool busy_ = false;
    QStringList errors_;
    QString loaded_;
};
