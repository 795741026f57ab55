#pragma once

#include "framework/HalvarnError.h"

#include <QString>

#include <memory>

class QLockFile;

// Another process of the program holds the lock; the message says which.
class LockBusy : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// One writer at a time across the program's windows and commands: a lock file
// beside what it guards, held for as long as this object lives. A lock left by
// a process that died is taken over. When another process holds it longer than
// a short wait, LockBusy carries `busyMessage` with %1 replaced by its PID; a
// lock that cannot be made at all raises FileWriteError.
class FileLock {
public:
    FileLock(const QString& guarded, const QString& busyMessage, int waitMs = 5000);
    ~FileLock();
    FileLock(FileLock&&) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    std::unique_ptr<QLockFile> lock_;
};
