// SPDX-License-Identifier: MIT
#include "ffmpeg/exportprogress.h"

namespace exportprogress
{

bool isMeasured(uint stepsDone, uint steps)
{
    return stepsDone + 1 < steps;
}

uint stepsReached(qint64 outputSize, qint64 bytesPerStep, uint stepsDone, uint steps)
{
    while (isMeasured(stepsDone, steps) && outputSize > stepsDone * bytesPerStep)
        ++stepsDone;
    return stepsDone;
}

} // namespace exportprogress
