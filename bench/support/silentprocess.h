// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace bench
{

/// Starts \a program with as little in between as the system allows; its standard streams lead to nowhere.
/// \a environment holds "NAME=value"; empty = that of this program. Returns the process id, to be waited for.
/// Throws Failure.
pid_t startSilently(const QString &program, const QStringList &arguments,
                    const QStringList &environment = {});

/// Whether \a status, as waitpid() gives it, means an end with \a exitCode.
bool hasEndedWith(int exitCode, int status);

} // namespace bench
