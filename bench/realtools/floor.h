// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QStringList>
#include <QVector>

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

/// The child processes of an import of \a paths, files of \a kinds kinds that take turns: a probe for each
/// file, then its extraction into \a folder, then its readers. Throws Failure.
std::vector<Job> importJobs(const QStringList &paths, int kinds, const QString &folder);

/// Those of the batch of exports that the file table asked for: \a files with \a options, whose folder
/// exists.
std::vector<Job> exportJobs(const QVector<FileData> &files, ExportOptions options);

} // namespace bench
