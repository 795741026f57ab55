// Makes one chosen system call on files of one folder fail, so that every
// writer of the program can be tested at every step without filling a disk.
//
//   HALVARN_FAIL_CALL   write, fsync, close or rename
//   HALVARN_FAIL_NTH    which call of that kind fails (1 = the first)
//   HALVARN_FAIL_ERRNO  ENOSPC, EIO or EACCES
//   HALVARN_FAIL_PATH   only files whose path starts with this count
//   HALVARN_FAIL_FIRED  a file written when the failure happens: the call and the path it concerned
//   HALVARN_FAIL_RUN    calls are counted afresh whenever this changes (for tests inside one process)
//
// Loaded with LD_PRELOAD into the program under test.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {
int counted = 0;
std::string countedRun;

std::string Setting(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

template <class Function> Function Real(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int ChosenErrno()
{
    const std::string name = Setting("HALVARN_FAIL_ERRNO");
    return name == "EIO" ? EIO : name == "EACCES" ? EACCES : ENOSPC;
}

bool InFolder(const std::string& path)
{
    const std::string folder = Setting("HALVARN_FAIL_PATH");
    return !folder.empty() && path.compare(0, folder.size(), folder) == 0;
}

std::string PathOf(int fd)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), target, sizeof target - 1);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : std::string();
}

// True when this call is the one to fail; errno is then set.
bool Fails(const char* call, const std::string& path)
{
    if (!InFolder(path) || Setting("HALVARN_FAIL_CALL") != call)
        return false;
    if (Setting("HALVARN_FAIL_RUN") != countedRun) {
        countedRun = Setting("HALVARN_FAIL_RUN");
        counted = 0;
    }
    if (++counted != std::atoi(Setting("HALVARN_FAIL_NTH").c_str()))
        return false;
    const std::string fired = Setting("HALVARN_FAIL_FIRED");
    const int marker = fired.empty() ? -1 : open(fired.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (marker >= 0) {
        const std::string what = std::string(call) + ' ' + path;
        const ssize_t ignored = Real<ssize_t (*)(int, const void*, size_t)>("write")(marker, what.data(), what.size());
        static_cast<void>(ignored);
        Real<int (*)(int)>("close")(marker);
    }
    errno = ChosenErrno();
    return true;
}
} // namespace

extern "C" {
ssize_t write(int fd, const void* buffer, size_t size)
{
    static const auto real = Real<ssize_t (*)(int, const void*, size_t)>("write");
    if (fd > 2 && Fails("write", PathOf(fd)))
        return -1;
    return real(fd, buffer, size);
}

int fsync(int fd)
{
    static const auto real = Real<int (*)(int)>("fsync");
    if (Fails("fsync", PathOf(fd)))
        return -1;
    return real(fd);
}

int fdatasync(int fd)
{
    static const auto real = Real<int (*)(int)>("fdatasync");
    if (Fails("fsync", PathOf(fd)))
        return -1;
    return real(fd);
}

// Only descriptors a file was written through: closing what was only read cannot lose data.
int close(int fd)
{
    static const auto real = Real<int (*)(int)>("close");
    const bool written = fd > 2 && (fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDONLY;
    if (written && Fails("close", PathOf(fd))) {
        real(fd); // the descriptor is gone all the same, as after any failed close
        return -1;
    }
    return real(fd);
}

int rename(const char* from, const char* to)
{
    static const auto real = Real<int (*)(const char*, const char*)>("rename");
    if (Fails("rename", to))
        return -1;
    return real(from, to);
}
}
