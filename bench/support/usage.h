// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QStringList>

#include <functional>
#include <sys/types.h>

namespace bench
{

/// What a piece of work has taken.
struct Usage {
    double time = 0.0;         ///< [s]
    double ownCpuTime = 0.0;   ///< [s] of the process that does it
    double toolsCpuTime = 0.0; ///< [s] of its child processes

    QJsonObject toJson() const;
};

/// Does \a work in this process and measures what it takes, with its peak memory and the number of child
/// processes over time, which a thread of its own counts.
QJsonObject measured(const std::function<void()> &work);

/// Starts \a program with as little in between as the system allows; its standard streams lead to nowhere.
/// \a environment holds "NAME=value"; empty = that of this program. Returns the process id, to be waited for.
/// Throws Failure.
pid_t startSilently(const QString &program, const QStringList &arguments,
                    const QStringList &environment = {});

/// Runs \a program silently and measures what it takes. Throws Failure unless it ends with exit code 0.
Usage runSilently(const QString &program, const QStringList &arguments);

/// Whether \a status, as waitpid() gives it, means an end with \a exitCode.
bool hasEndedWith(int exitCode, int status);

/// CPU time that the calling thread has used so far [s].
double threadCpuTime();

} // namespace bench
