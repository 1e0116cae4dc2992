// SPDX-License-Identifier: MIT
#include "control/stagequeue.h"

bool StageQueue::admit(const Request &request, bool idle)
{
    // A drop adds to the import under way, even if something waits for the end of that import.
    if (isFree(request, idle) && (stage == Stage::Import || waiting.empty()))
        return true;
    waiting.push_back(request);
    return false;
}

std::optional<StageQueue::Request> StageQueue::takeNext(bool idle)
{
    std::optional<Request> next;
    if (!waiting.empty() && isFree(waiting.front(), idle)) {
        next = waiting.front();
        waiting.pop_front();
    }
    return next;
}

bool StageQueue::isFree(const Request &request, bool idle) const
{
    const bool isDrop = std::holds_alternative<QList<QUrl>>(request);
    return isDrop ? stage != Stage::ReRead : stage == Stage::None && idle;
}
