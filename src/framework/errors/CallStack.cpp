#include "framework/errors/CallStack.h"

#define BOOST_STACKTRACE_USE_BACKTRACE
#include <QFileInfo>

#include <algorithm>
#include <boost/stacktrace.hpp>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <typeinfo>

using namespace Qt::StringLiterals;

namespace {
std::vector<StackFrame> Frames(const boost::stacktrace::stacktrace& trace)
{
    std::vector<StackFrame> frames;
    for (const boost::stacktrace::frame& frame : trace) {
        StackFrame f;
        f.function = QString::fromStdString(frame.name());
        f.file = QString::fromStdString(frame.source_file());
        f.line = static_cast<int>(frame.source_line());
        f.address = u"0x"_s + QString::number(reinterpret_cast<quintptr>(frame.address()), 16);
        if (f.function.isEmpty() && f.file.isEmpty())
            continue; // a frame of a stripped system library says nothing
        frames.push_back(std::move(f));
    }
    return frames;
}

thread_local boost::stacktrace::stacktrace LastThrow{0, 0};
} // namespace

std::vector<StackFrame> CallStackHere(int skip)
{
    return Frames(boost::stacktrace::stacktrace(static_cast<std::size_t>(skip) + 1, 64));
}

std::vector<StackFrame> LastThrowStack()
{
    return Frames(LastThrow);
}

QString FrameText(const StackFrame& frame)
{
    const QString function = frame.function.isEmpty() ? u"??"_s : frame.function;
    if (frame.file.isEmpty())
        return function + u" ["_s + frame.address + u']';
    return u"%1 at %2:%3"_s.arg(function, QFileInfo(frame.file).fileName()).arg(frame.line);
}

void WriteRawStack(int fd, int skip)
{
    boost::stacktrace::safe_dump_to(static_cast<std::size_t>(skip) + 1, boost::stacktrace::detail::max_frames_dump, fd);
}

std::vector<quintptr> ReadRawStack(const QByteArray& record)
{
    std::vector<quintptr> addresses(static_cast<std::size_t>(record.size()) / sizeof(quintptr));
    std::memcpy(addresses.data(), record.constData(), addresses.size() * sizeof(quintptr));
    addresses.erase(std::find(addresses.begin(), addresses.end(), 0), addresses.end());
    return addresses;
}

StackFrame FrameAt(quintptr address)
{
    const boost::stacktrace::frame frame(reinterpret_cast<boost::stacktrace::frame::native_frame_ptr_t>(address));
    return {QString::fromStdString(frame.name()), QString::fromStdString(frame.source_file()),
            static_cast<int>(frame.source_line()), u"0x"_s + QString::number(address, 16)};
}

// Every throw of the program passes here first, so a report can show where an
// exception came from rather than where it was caught. The sanitizers keep
// their own hook on throws, so their builds do without.
#if !defined(__SANITIZE_ADDRESS__)
namespace __cxxabiv1 {
extern "C" void __cxa_throw(void* exception, std::type_info* type, void (*destroy)(void*))
{
    using Throw = void (*)(void*, std::type_info*, void (*)(void*));
    static const auto rethrow = reinterpret_cast<Throw>(dlsym(RTLD_NEXT, "__cxa_throw"));
    LastThrow = boost::stacktrace::stacktrace(1, 64);
    rethrow(exception, type, destroy);
    __builtin_unreachable();
}
} // namespace __cxxabiv1
#endif
