// SPDX-License-Identifier: MIT
#pragma once

#include "bench/realtools/joblauncher.h"

#include <QStringList>
#include <QTemporaryDir>

namespace bench
{

/// The child processes of an import and nothing else: a probe for each file, then its extraction, then its
/// readers.
class ImportFloor
{
public:
    /// For the media files \a paths, whose kinds take turns. Throws Failure.
    explicit ImportFloor(const QStringList &paths);

    void run() const { runJobs(jobs); }

private:
    QTemporaryDir extracted;
    std::vector<Job> jobs;
};

} // namespace bench
