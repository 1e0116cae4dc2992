// SPDX-License-Identifier: MIT
#include "app/toolprocess.h"

#include <QCoreApplication>

#ifdef Q_OS_LINUX
#include <csignal>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>
#endif

namespace
{

#ifdef Q_OS_LINUX
// Runs in the child, between fork and exec of a program with threads: nothing but plain system calls.
void stepBackBehindOwner(pid_t owner)
{
    constexpr int lowerPriority = 10;
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != owner)
        _exit(1); // the owner ended before the request could take hold

    // Both are courtesies to the rest of the machine: the job goes on without them.
    [[maybe_unused]] const int priority = nice(lowerPriority);
    const int score = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (score >= 0) {
        [[maybe_unused]] const ssize_t written = write(score, "1000", 4);
        close(score);
    }
}
#endif

} // namespace

ToolProcess::ToolProcess(QObject *parent) : QProcess(parent), owner(QCoreApplication::applicationPid())
{
}

ToolProcess::~ToolProcess()
{
    if (state() == NotRunning)
        return;
    disconnect();
    QProcess::close();
}

void ToolProcess::setupChildProcess()
{
#ifdef Q_OS_LINUX
    stepBackBehindOwner(static_cast<pid_t>(owner));
#endif
}
