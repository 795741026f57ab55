#include "framework/SafeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
// A descriptor closed exactly once; close() reports whether it went well.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor()
    {
        if (fd_ >= 0)
            ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return fd_; }
    bool close()
    {
        const int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }

private:
    int fd_;
};

[[noreturn]] void Fail(const QString& path, int error)
{
    throw FileWriteError(
        u"Nie można zapisać pliku \"%1\": %2"_s.arg(QDir::toNativeSeparators(path), FileFailureReason(error)));
}

bool WriteAll(int fd, const QByteArray& bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += n;
    }
    return true;
}

// A rename is on the disk only once its folder is.
bool SyncFolder(const QByteArray& folder)
{
    Descriptor fd(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd.get() >= 0 && ::fsync(fd.get()) == 0 && fd.close();
}

// The target's own permissions, or the usual ones for a new file.
mode_t ModeFor(const QByteArray& target, FileAccess access)
{
    struct stat existing {};
    if (access == FileAccess::Private)
        return 0600;
    return ::stat(target.constData(), &existing) == 0 ? existing.st_mode & 07777 : 0644;
}

// A name of its own in the target's folder, created with the given mode and never shared.
int CreateTemporary(const QByteArray& target, mode_t mode, QByteArray& name)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = target + ".tmp" + QByteArray::number(::getpid()) + '-' + QByteArray::number(attempt);
        const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}
} // namespace

QString FileFailureReason(int error)
{
    const QString system = QString::fromLocal8Bit(std::strerror(error));
    switch (error) {
    case ENOSPC:
    case EDQUOT: return u"Brak miejsca na dysku (%1)"_s.arg(system);
    case EACCES:
    case EPERM: return u"Brak uprawnień do zapisu (%1)"_s.arg(system);
    case EROFS: return u"Dysk jest tylko do odczytu (%1)"_s.arg(system);
    case EIO: return u"Błąd odczytu lub zapisu dysku (%1)"_s.arg(system);
    case EISDIR: return u"W tym miejscu jest folder (%1)"_s.arg(system);
    case ENOENT:
    case ENOTDIR: return u"Folder nie istnieje (%1)"_s.arg(system);
    case EBUSY:
    case ETXTBSY: return u"Plik jest używany przez inny program (%1)"_s.arg(system);
    default: return u"Błąd zapisu (%1)"_s.arg(system);
    }
}

void WriteFileAtomically(const QString& path, const QByteArray& contents, FileAccess access)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const QByteArray target = QFile::encodeName(absolute);
    QByteArray temporary;
    Descriptor fd(CreateTemporary(target, ModeFor(target, access), temporary));
    if (fd.get() < 0)
        Fail(absolute, errno);
    int error = 0;
    if (!WriteAll(fd.get(), contents) || ::fsync(fd.get()) != 0)
        error = errno;
    if (!fd.close() && error == 0)
        error = errno;
    if (error == 0 && ::rename(temporary.constData(), target.constData()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temporary.constData());
        Fail(absolute, error);
    }
    // The new contents are in place; without the folder synced they may not survive a power cut.
    if (!SyncFolder(QFile::encodeName(QFileInfo(absolute).absolutePath())))
        Fail(absolute, errno);
}

void AppendDurably(const QString& path, const QByteArray& line)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    Descriptor fd(::open(QFile::encodeName(absolute).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
    if (fd.get() < 0)
        Fail(absolute, errno);
    const off_t before = ::lseek(fd.get(), 0, SEEK_END);
    if (!WriteAll(fd.get(), line) || ::fsync(fd.get()) != 0) {
        const int error = errno;
        if (before >= 0 && ::ftruncate(fd.get(), before) == 0)
            ::fsync(fd.get());
        Fail(absolute, error);
    }
    // Synced, the line is on the disk: what closing says adds nothing to that.
    fd.close();
}
