#pragma once

#include "framework/errors/ErrorReport.h"

#include <optional>

// A fatal signal (segmentation fault, abort, …) writes the signal's number and
// the raw stack to `path` from the signal handler, using only async-signal-safe
// calls, then lets the signal end the program as it would have. An exception
// that reaches std::terminate adds its message to the record of the abort
// that follows. Only the first call installs.
void InstallCrashRecorder(const QString& path);

// The crash an earlier run recorded, with its stack resolved now; none when
// there is no record. The record is removed once read.
std::optional<CaughtError> TakeCrashRecord(const QString& path);
