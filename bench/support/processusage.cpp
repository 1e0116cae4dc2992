// SPDX-License-Identifier: MIT
#include "bench/support/processusage.h"

#include <QDir>
#include <QFile>

#include <ctime>
#include <malloc.h>
#include <sys/resource.h>

namespace bench
{

namespace
{

double seconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

rusage usageOf(__rusage_who who)
{
    rusage usage{};
    getrusage(who, &usage);
    return usage;
}

double cpuTime(__rusage_who who)
{
    const rusage usage = usageOf(who);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

double ownCpuTime()
{
    return cpuTime(RUSAGE_SELF);
}

double threadCpuTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double childrenCpuTime()
{
    return cpuTime(RUSAGE_CHILDREN);
}

qint64 heapInUse()
{
    const auto info = mallinfo2();
    return static_cast<qint64>(info.uordblks) + static_cast<qint64>(info.hblkhd);
}

void releaseFreeMemory()
{
    malloc_trim(0);
}

qint64 peakMemory()
{
    constexpr qint64 kibi = 1024;
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    const auto entry = status.indexOf("VmHWM:");
    return entry < 0 ? 0 : status.mid(entry).simplified().split(' ').value(1).toLongLong() * kibi;
}

void resetPeakMemory()
{
    QFile file("/proc/self/clear_refs");
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

int livingChildren()
{
    qsizetype count = 0;
    const QStringList threads = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &thread : threads) {
        QFile file("/proc/self/task/" + thread + "/children");
        if (file.open(QIODevice::ReadOnly))
            count += file.readAll().count(' '); // one behind each process id
    }
    return static_cast<int>(count);
}

} // namespace bench
