#pragma once

#include "framework/HalvarnError.h"

#include <QByteArray>
#include <QString>

class FileWriteError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// Who may read a file written whole: everybody as usual, or only the user
// (keys, screenshots, crash records).
enum class FileAccess { Shared, Private };

// Writes the whole file to a temporary file in the same folder, checks every
// write, the sync and the close, renames it over the target and syncs the
// folder. On any failure the temporary file is removed, the old target stays
// byte for byte, and FileWriteError names the file and the cause in Polish.
// Returning means the contents are on the disk.
void WriteFileAtomically(const QString& path, const QByteArray& contents, FileAccess access = FileAccess::Shared);

// Appends one whole line and syncs it. A failed append cuts the file back to
// its old length, so no partial line stays, and raises FileWriteError.
void AppendDurably(const QString& path, const QByteArray& line);

// The cause of a failed file operation in the user's words: "Brak miejsca na dysku", …
QString FileFailureReason(int error);
