// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "bench/realtools/joblauncher.h"

#include <QVector>

namespace bench
{

/// The child processes of a batch of exports and nothing else.
class ExportFloor
{
public:
    /// For the batch that the file table asked for: \a files with \a options, whose folder exists.
    ExportFloor(const QVector<FileData> &files, ExportOptions options);

    void run() const { runJobs(jobs); }

private:
    std::vector<Job> jobs;
};

} // namespace bench
