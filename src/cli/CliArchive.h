#pragma once

#include <QStringList>

// "halvarn-cli archive list|show|export|remove": the archive of downloads
// without a window. Exit code 0, 1 when the archive or the download cannot be
// read or a file not written, 2 for bad arguments.
int RunArchive(const QStringList& arguments);

// "halvarn-cli recount --archive ID --reference-date D": opens a stored
// download, counts it again on another reference date and prints the groups;
// with --out, writes its exports and prints there. Exit codes as for archive.
int RunRecount(const QStringList& arguments);
