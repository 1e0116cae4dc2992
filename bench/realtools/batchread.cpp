// SPDX-License-Identifier: MIT
#include "bench/realtools/batchread.h"

#include "bench/support/benchmarkprogram.h"
#include "bench/support/silentprocess.h"

#include <QCoreApplication>
#include <QFile>

#include <sys/wait.h>
#include <unistd.h>

namespace bench
{

Usage batchRead(const QString &folder)
{
    QElapsedTimer timer;
    timer.start();
    const pid_t process =
        startSilently(QCoreApplication::applicationDirPath() + "/ostrel-batch", {"read", folder});
    siginfo_t end{};
    waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOWAIT); // its figures stay until it is reaped
    Usage usage;
    usage.time = static_cast<double>(timer.nsecsElapsed()) * 1e-9;

    QFile file(QString("/proc/%1/stat").arg(process));
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    int status = 0;
    if (waitpid(process, &status, 0) != process || !hasEndedWith(0, status))
        throw Failure("ostrel-batch has failed");
    // Behind the name, which is in brackets: user and system time, then those of the child processes.
    constexpr int userTime = 11;
    const QList<QByteArray> fields = content.mid(content.lastIndexOf(')') + 2).split(' ');
    const auto seconds = [&](int field) {
        return fields.value(field).toDouble() / static_cast<double>(sysconf(_SC_CLK_TCK));
    };
    usage.ownCpuTime = seconds(userTime) + seconds(userTime + 1);
    usage.childCpuTime = seconds(userTime + 2) + seconds(userTime + 3);
    return usage;
}

} // namespace bench
