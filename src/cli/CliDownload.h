#pragma once

#include "registry/download/DownloadCommand.h"

#include <QString>

class CliHost;
class DataFolder;
class HalvarnSession;

using namespace Qt::StringLiterals;

// Where the files of a finished download go; an empty folder is not written.
struct DownloadOutputs {
    QString exportDir;
    QString pdfDir;
    QString herd = u"ALL"_s; // of the prints
};

// Makes the data folder and installs the shipped templates it lacks; false,
// with the reason on stderr, when the folder cannot be made.
bool PrepareDataFolder(const DataFolder& folder);

bool RanToItsEnd(DownloadOutcome outcome);
// 0 for a download read whole, 3 for one that ran to its end with a herd that
// ended early, 1 for one that stopped early or whose files could not be written.
int DownloadExitCode(DownloadOutcome outcome, bool filesFailed);
// Of two exit codes, the one that tells of the worse end.
int WorseExitCode(int a, int b);

// Exports and prints follow only a download that ran to its end, so a stopped
// one leaves the files of an earlier run as they were. True when one of them
// could not be written; every file written is listed on stderr.
bool ExportsFailed(DownloadOutcome outcome, const DownloadOutputs& outputs, HalvarnSession& session, CliHost& host);
