#include "framework/FileLock.h"

#include "framework/SafeFile.h"

#include <QDir>
#include <QLockFile>

#include <cerrno>

using namespace Qt::StringLiterals;

FileLock::FileLock(const QString& guarded, const QString& busyMessage, int waitMs)
    : lock_(std::make_unique<QLockFile>(guarded + u".lock"_s))
{
    lock_->setStaleLockTime(0); // a long hold is not stale; a dead holder's lock is
    if (lock_->tryLock(waitMs))
        return;
    if (lock_->error() == QLockFile::LockFailedError) {
        qint64 pid = 0;
        QString host, application;
        lock_->getLockInfo(&pid, &host, &application);
        throw LockBusy(busyMessage.arg(pid));
    }
    const QString reason = lock_->error() == QLockFile::PermissionError ? FileFailureReason(EACCES)
                                                                        : u"brak miejsca na dysku albo błąd zapisu"_s;
    throw FileWriteError(
        u"Nie można zapisać pliku blokady \"%1\": %2"_s.arg(QDir::toNativeSeparators(guarded + u".lock"_s), reason));
}

FileLock::~FileLock() = default;
FileLock::FileLock(FileLock&&) noexcept = default;
