// SPDX-License-Identifier: MIT
#include "process/toolprocess.h"

#include <chrono>

#ifdef Q_OS_LINUX
#include <csignal>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace
{

#ifdef Q_OS_LINUX
// Runs in the child, between its birth and exec, in the memory of a program with threads: nothing but plain
// system calls, and no variable is written. Set from outside, each would come too late for a tool that is
// quick to start threads or whose owner is killed at once.
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

// Qt 5 learns from SIGCHLD that a child has ended, and then goes through the process ids that it has noted.
// The signal of a child that is killed before its id is noted goes by in vain, and the process would run for
// ever. Another signal makes Qt look again.
void callAttentionToEnd(qint64 processId)
{
    siginfo_t end = {};
    const int result = waitid(P_PID, static_cast<id_t>(processId), &end, WEXITED | WNOHANG | WNOWAIT);
    if (result == 0 && end.si_pid != 0)
        raise(SIGCHLD);
}
#else
void callAttentionToEnd(qint64)
{
}
#endif

} // namespace

ToolProcess::ToolProcess(QObject *parent) : qtversion::Process(parent), watch(this)
{
#ifdef Q_OS_LINUX
    setChildProcessModifier([owner = getpid()] { stepBackBehindOwner(owner); });
    qtversion::startWithoutCopy(*this);
#endif
    constexpr std::chrono::seconds interval(1);
    watch.setInterval(interval);
    connect(&watch, &QTimer::timeout, this, [this] { callAttentionToEnd(processId()); });
    connect(this, &QProcess::stateChanged, &watch, [this](ProcessState state) {
        if (state == NotRunning)
            watch.stop();
        else
            watch.start();
    });
}

ToolProcess::~ToolProcess()
{
    if (state() == NotRunning)
        return;
    disconnect();
    callAttentionToEnd(processId());
    QProcess::close();
}
