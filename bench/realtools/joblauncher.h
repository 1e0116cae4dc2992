// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace bench
{

/// One child process, and those that can only start when it has ended well.
struct Job {
    QString program;
    QStringList arguments;
    QStringList environment = {}; ///< "NAME=value"; empty = that of this program
    int otherGoodExitCode = 0;    ///< besides 0
    std::vector<Job> followers = {};
};

/// Runs all of \a jobs, at most as many at a time as the controller, at the priority that it gives its tools,
/// and with nothing but the starting and the waiting. Throws Failure when a process fails.
void runJobs(const std::vector<Job> &jobs);

} // namespace bench
