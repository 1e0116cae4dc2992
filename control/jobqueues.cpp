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
    if (!mayStart(kind) || waiting[kind].isEmpty())
        return std::nullopt;
    return waiting[kind].dequeue();
}

bool JobQueues::serve(const std::function<void(Kind kind, const FileData &file)> &start)
{
    bool served = false;
    for (const Kind kind : {Probe, Extraction, Reading, Export}) {
        if (const auto file = takeNext(kind)) {
            start(kind, *file);
            served = true;
        }
    }
    return served;
}
