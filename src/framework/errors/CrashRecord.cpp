#include "framework/errors/CrashRecord.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <link.h>
#include <memory>
#include <signal.h>
#include <string.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
// Where each program file was loaded, so that a later run can find the same
// code in its own memory: the addresses of one run mean nothing in another.
struct Module {
    quintptr begin;
    quintptr end;
    std::array<char, 240> path;
};
constexpr std::size_t MaxModules = 160;

// A record: the magic, the signal, the message of an exception that reached
// std::terminate, the modules, then the raw stack; written field by field from
// static storage, since the handler's own stack is small.
struct RecordHeader {
    std::array<char, 8> magic;
    int signal;
    std::array<char, 512> message;
    std::array<Module, MaxModules> modules;
};
constexpr std::size_t HeaderBytes = 8 + sizeof(int) + 512 + sizeof(RecordHeader::modules);
constexpr std::array<char, 8> Magic{'H', 'A', 'L', 'V', 'C', 'R', 'S', 'H'};
constexpr std::array<int, 5> FatalSignals{SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

// Written before the handler is installed and only read inside it.
std::array<char, 4096> RecordPath{};
std::array<char, 4096 + 4> TemporaryPath{}; // the record is whole under its name, or not there
std::array<char, 512> TerminateMessage{};
std::array<Module, MaxModules> Modules{};
// A stack overflow leaves no stack for the handler; it runs on this one.
std::array<char, 1 << 16> HandlerStack{};

void OnFatalSignal(int signal)
{
    const int fd = ::open(TemporaryPath.data(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd >= 0) {
        const auto put = [fd](const void* data, std::size_t size) {
            return ::write(fd, data, size) == static_cast<ssize_t>(size);
        };
        bool written = put(Magic.data(), Magic.size()) && put(&signal, sizeof signal) &&
                       put(TerminateMessage.data(), TerminateMessage.size()) && put(Modules.data(), sizeof Modules);
        if (written)
            WriteRawStack(fd, 2); // this handler and the kernel's return path
        written = written && ::fsync(fd) == 0;
        if (::close(fd) == 0 && written)
            ::rename(TemporaryPath.data(), RecordPath.data());
        else
            ::unlink(TemporaryPath.data());
    }
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

// The program file of each loaded object and the address range it occupies.
std::vector<Module> LoadedModules()
{
    std::vector<Module> modules;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            Module module{info->dlpi_addr, info->dlpi_addr, {}};
            for (int i = 0; i < info->dlpi_phnum; ++i)
                if (info->dlpi_phdr[i].p_type == PT_LOAD)
                    module.end = std::max<quintptr>(module.end, info->dlpi_addr + info->dlpi_phdr[i].p_vaddr +
                                                                    info->dlpi_phdr[i].p_memsz);
            const QByteArray path = info->dlpi_name[0] != 0
                                        ? QByteArray(info->dlpi_name)
                                        : QFile::encodeName(QCoreApplication::applicationFilePath());
            ::strncpy(module.path.data(), path.constData(), module.path.size() - 1);
            static_cast<std::vector<Module>*>(data)->push_back(module);
            return 0;
        },
        &modules);
    return modules;
}

// An address of the crashed run as the same code's address in this run.
StackFrame Translated(quintptr address, const std::array<Module, MaxModules>& then, const std::vector<Module>& now)
{
    const auto module = std::find_if(then.begin(), then.end(),
                                     [address](const Module& m) { return address >= m.begin && address < m.end; });
    if (module == then.end())
        return {{}, {}, 0, u"0x"_s + QString::number(address, 16)};
    const quintptr offset = address - module->begin;
    const QString name = QString::fromLocal8Bit(module->path.data());
    for (const Module& loaded : now)
        if (::strcmp(loaded.path.data(), module->path.data()) == 0)
            return FrameAt(loaded.begin + offset);
    return {{}, {}, 0, u"%1+0x%2"_s.arg(name).arg(offset, 0, 16)};
}

// An exception no one caught: its message goes into the record that the abort writes.
void OnTerminate()
{
    if (const std::exception_ptr error = std::current_exception()) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& e) {
            ::strncpy(TerminateMessage.data(), e.what(), TerminateMessage.size() - 1);
        } catch (...) {
            ::strncpy(TerminateMessage.data(), "nieznany wyjątek", TerminateMessage.size() - 1);
        }
    }
    std::abort();
}

QString SignalName(int signal)
{
    switch (signal) {
    case SIGSEGV: return u"SIGSEGV"_s;
    case SIGABRT: return u"SIGABRT"_s;
    case SIGBUS: return u"SIGBUS"_s;
    case SIGFPE: return u"SIGFPE"_s;
    case SIGILL: return u"SIGILL"_s;
    default: return u"SIG%1"_s.arg(signal);
    }
}
} // namespace

void InstallCrashRecorder(const QString& path)
{
    const QByteArray native = QFile::encodeName(path);
    const bool installed = RecordPath.front() != 0;
    if (installed || static_cast<std::size_t>(native.size()) >= RecordPath.size())
        return;
    std::copy(native.begin(), native.end(), RecordPath.begin());
    const QByteArray temporary = native + ".tmp";
    std::copy(temporary.begin(), temporary.end(), TemporaryPath.begin());
    const std::vector<Module> modules = LoadedModules();
    std::copy_n(modules.begin(), std::min(modules.size(), MaxModules), Modules.begin());
    stack_t alternate{};
    alternate.ss_sp = HandlerStack.data();
    alternate.ss_size = HandlerStack.size();
    ::sigaltstack(&alternate, nullptr);
    struct sigaction action {};
    action.sa_handler = OnFatalSignal;
    action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND);
    ::sigemptyset(&action.sa_mask);
    for (const int signal : FatalSignals)
        ::sigaction(signal, &action, nullptr);
    std::set_terminate(OnTerminate);
}

std::optional<CaughtError> TakeCrashRecord(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray record = file.readAll();
    file.close();
    QFile::remove(path);
    if (static_cast<std::size_t>(record.size()) < HeaderBytes)
        return std::nullopt;
    auto header = std::make_unique<RecordHeader>();
    const char* field = record.constData();
    for (auto [target, size] : {std::pair<void*, std::size_t>{header->magic.data(), header->magic.size()},
                                {&header->signal, sizeof header->signal},
                                {header->message.data(), header->message.size()},
                                {header->modules.data(), sizeof header->modules}}) {
        ::memcpy(target, field, size);
        field += size;
    }
    if (header->magic != Magic)
        return std::nullopt;
    const QString name = SignalName(header->signal);
    QString message =
        u"Poprzednie uruchomienie programu zakończyło się błędem krytycznym (%1, sygnał %2)."_s.arg(name).arg(
            header->signal);
    header->message.back() = 0;
    if (header->message.front() != 0)
        message += u" Nieobsłużony wyjątek: "_s + QString::fromUtf8(header->message.data());
    const std::vector<Module> now = LoadedModules();
    std::vector<StackFrame> stack;
    for (const quintptr address : ReadRawStack(record.mid(static_cast<qsizetype>(HeaderBytes))))
        stack.push_back(Translated(address, header->modules, now));
    return CaughtError{name, message, stack};
}
