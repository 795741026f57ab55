#pragma once

#include "framework/OperationHost.h"

#include <QElapsedTimer>
#include <QString>

#include <sys/resource.h>
#include <time.h>
#include <vector>

using namespace Qt::StringLiterals;

// A host that hears nothing, shows nothing and answers No.
class SilentHost : public OperationHost {
public:
    void statusModeChanged(bool, bool) override {}
    void statusTextChanged(StatusPanel, const QString&) override {}
    void progressChanged(int, int, int) override {}
    void memoAppended(Memo, const QString&) override {}
    void memoCleared(Memo) override {}
    void showMessage(const QString&, const QString&, MessageIcon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
    std::optional<QString> askHerd() override { return std::nullopt; }
    std::vector<int> summaryRowsInDisplayOrder() override { return {}; }
    void openWithDesktop(const QString&) override {}
};

// A host that hears nothing, answers No, prints every herd and shows the summary rows it is given.
class BenchHost : public SilentHost {
public:
    std::vector<int> rows;
    std::optional<QString> askHerd() override { return u"ALL"_s; }
    std::vector<int> summaryRowsInDisplayOrder() override { return rows; }
};

inline qint64 CpuNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

struct Timing {
    double wall = 0.0; // seconds
    double cpu = 0.0;  // seconds of this process: the work itself on a shared machine

    QString text() const
    {
        return QString::number(wall, 'f', 3) + u" s (CPU "_s + QString::number(cpu, 'f', 3) + u" s)"_s;
    }
};

template <class F> Timing Measure(F&& run)
{
    QElapsedTimer timer;
    timer.start();
    const qint64 cpuStart = CpuNanoseconds();
    run();
    return {static_cast<double>(timer.nsecsElapsed()) / 1e9, static_cast<double>(CpuNanoseconds() - cpuStart) / 1e9};
}

inline long PeakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}
