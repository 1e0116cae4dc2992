// SPDX-License-Identifier: MIT
#include "bench/reader/processtimer.h"

#include "bench/support/benchmarkprogram.h"
#include "bench/support/silentprocess.h"

#include <QElapsedTimer>

#include <sys/wait.h>

namespace bench
{

double timeOfProcess(const QString &program, const QStringList &arguments)
{
    QElapsedTimer timer;
    timer.start();
    const pid_t pid = startSilently(program, arguments);
    int status = 0;
    waitpid(pid, &status, 0);
    const double time = static_cast<double>(timer.nsecsElapsed()) * 1e-6;
    if (!hasEndedWith(0, status))
        throw Failure(program + ' ' + arguments.join(' ') + " has failed");
    return time;
}

} // namespace bench
