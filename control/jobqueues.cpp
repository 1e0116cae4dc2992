// SPDX-License-Identifier: MIT
#include "control/jobqueues.h"

#include <numeric>

void JobQueues::finished(Kind kind)
{
    if (runningJobs[kind] > 0)
        --runningJobs[kind];
}

int JobQueues::running() const
{
    return std::accumulate(runningJobs.cbegin(), runningJobs.cend(), 0);
}

std::optional<FileData> JobQueues::takeNext(Kind kind)
{
    if (!mayStart() || !isWaiting(kind))
        return std::nullopt;
    return waiting[kind].dequeue();
}
