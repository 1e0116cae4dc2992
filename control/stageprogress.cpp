// SPDX-License-Identifier: MIT
#include "control/stageprogress.h"

uint StageProgress::total(Mode mode) const
{
    const uint unitsPerFile = mode == Mode::Import ? 3 : 2;
    return files * unitsPerFile + extraReads;
}

bool StageProgress::advance(Mode mode)
{
    const double fraction = static_cast<double>(done) / static_cast<double>(total(mode));
    if (!(fraction > lastFraction))
        return false;
    lastFraction = fraction;
    return true;
}

void StageProgress::resetCounters()
{
    files = 0;
    extraReads = 0;
    done = 0;
}
