// SPDX-License-Identifier: MIT
#include "filelist/pendingwork.h"

#include <algorithm>

void PendingWork::drop()
{
    importBusy = true;
    importUnderWay = true;
    ++dropsOnTheWay;
}

void PendingWork::takeDrop()
{
    dropsOnTheWay = std::max(0, dropsOnTheWay - 1);
}

void PendingWork::askReading()
{
    ++readings;
    readingWaitsForImport = importBusy;
}

void PendingWork::endReading()
{
    readings = std::max(0, readings - 1);
}

void PendingWork::endImport()
{
    // An import that was there before the reading ends before it.
    const bool endsReading = isReading() && !readingWaitsForImport;
    readingWaitsForImport = false;
    importBusy = false;
    if (endsReading)
        endReading();
    else if (dropsOnTheWay == 0) // otherwise it is the end of an earlier import
        importUnderWay = false;
}
