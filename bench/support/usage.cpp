// SPDX-License-Identifier: MIT
#include "bench/support/usage.h"

#include "bench/support/program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>

#include <atomic>
#include <chrono>
#include <ctime>
#include <deque>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace bench
{

namespace
{

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

double secondsOf(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

/// CPU time of this process, or of its child processes that have ended and of theirs [s].
double cpuTime(__rusage_who who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void resetPeakMemory()
{
    QFile file("/proc/self/clear_refs");
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

/// The most memory that this process has held at one time since resetPeakMemory() [MiB].
double peakMemory()
{
    constexpr double kibiPerMebi = 1024.0;
    const QByteArray status = contentOf("/proc/self/status");
    return status.mid(status.indexOf("VmHWM:")).simplified().split(' ').value(1).toDouble() / kibiPerMebi;
}

int livingChildren()
{
    qsizetype count = 0;
    const QStringList threads = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &thread : threads)
        count += contentOf("/proc/self/task/" + thread + "/children").count(' '); // one after each process id
    return static_cast<int>(count);
}

} // namespace

QJsonObject Usage::toJson() const
{
    return {{"time_s", time}, {"own_cpu_s", ownCpuTime}, {"tools_cpu_s", toolsCpuTime}};
}

QJsonObject measured(const std::function<void()> &work)
{
    resetPeakMemory();
    QElapsedTimer timer;
    timer.start();
    const double ownBefore = cpuTime(RUSAGE_SELF);
    const double toolsBefore = cpuTime(RUSAGE_CHILDREN);
    std::atomic<bool> ended = false;
    QJsonArray processes;
    double costOfCounting = 0.0;
    std::thread counter([&] {
        while (!ended) {
            processes += QJsonArray{secondsOf(timer), livingChildren()};
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        costOfCounting = threadCpuTime();
    });
    const auto stop = [&] {
        ended = true;
        counter.join();
    };
    try {
        work();
    } catch (...) {
        stop();
        throw;
    }
    Usage usage;
    usage.time = secondsOf(timer);
    stop();
    usage.ownCpuTime = cpuTime(RUSAGE_SELF) - ownBefore - costOfCounting;
    usage.toolsCpuTime = cpuTime(RUSAGE_CHILDREN) - toolsBefore;
    QJsonObject figures = usage.toJson();
    figures.insert("peak_mib", peakMemory());
    figures.insert("processes", processes);
    return figures;
}

pid_t startSilently(const QString &program, const QStringList &arguments, const QStringList &environment)
{
    std::deque<QByteArray> texts;
    const auto pointersTo = [&texts](const QStringList &list) {
        std::vector<char *> pointers;
        for (const QString &text : list)
            pointers.push_back(texts.emplace_back(QFile::encodeName(text)).data());
        pointers.push_back(nullptr);
        return pointers;
    };
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int error = posix_spawn(&pid, QFile::encodeName(program).constData(), &actions, nullptr,
                                  pointersTo(QStringList{program} + arguments).data(),
                                  environment.isEmpty() ? environ : pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw Failure(program + " cannot be started");
    return pid;
}

Usage runSilently(const QString &program, const QStringList &arguments)
{
    QElapsedTimer timer;
    timer.start();
    const pid_t pid = startSilently(program, arguments);
    siginfo_t end{};
    waitid(P_PID, static_cast<id_t>(pid), &end, WEXITED | WNOWAIT); // its figures stay until it is reaped
    Usage usage;
    usage.time = secondsOf(timer);
    const QByteArray content = contentOf(QString("/proc/%1/stat").arg(pid));
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || !hasEndedWith(0, status))
        throw Failure(program + ' ' + arguments.join(' ') + " has failed");
    // Behind the name, which is in brackets: user and system time, then those of the child processes.
    constexpr int userTime = 11;
    const QList<QByteArray> fields = content.mid(content.lastIndexOf(')') + 2).split(' ');
    const auto seconds = [&](int field) {
        return (fields.value(field).toDouble() + fields.value(field + 1).toDouble()) /
               static_cast<double>(sysconf(_SC_CLK_TCK));
    };
    usage.ownCpuTime = seconds(userTime);
    usage.toolsCpuTime = seconds(userTime + 2);
    return usage;
}

bool hasEndedWith(int exitCode, int status)
{
    return WIFEXITED(status) && WEXITSTATUS(status) == exitCode;
}

double threadCpuTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace bench
