// SPDX-License-Identifier: MIT
#pragma once

#include "bench/window/shoot.h"

#include <QString>
#include <QVector>

namespace bench
{

/// What one step of the window's work has cost.
struct Step {
    QString name;
    double time = 0.0;         ///< [s]
    double cpuTime = 0.0;      ///< [s] of the window's thread
    double longestBlock = 0.0; ///< [ms] for which the event loop answered nothing
};

struct WindowRun {
    int rows = 0;
    QVector<Step> steps;
    double memoryPerRow = 0.0;    ///< [bytes] of heap, without the probe's JSON
    double probeJsonPerRow = 0.0; ///< [bytes] of heap
};

/// Imports \a rows files of \a kind into a window of its own, reads them again, selects and deletes them.
WindowRun runWindow(Shoot::Kind kind, int rows);

} // namespace bench
