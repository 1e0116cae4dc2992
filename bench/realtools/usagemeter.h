// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QPointF>
#include <QVector>

#include <atomic>
#include <functional>
#include <thread>

namespace bench
{

/// What a piece of work has taken.
struct Usage {
    double time = 0.0;          ///< [s]
    double ownCpuTime = 0.0;    ///< [s] of this process
    double childCpuTime = 0.0;  ///< [s] of its child processes
    double peakMemory = 0.0;    ///< [MiB] of this process
    QVector<QPointF> processes; ///< child processes alive (y) over time [s] (x)

    double mostProcesses() const;
    double meanProcesses() const;
};

/// Does \a work and measures what it takes. Child processes are counted by a thread of its own.
Usage measured(const std::function<void()> &work);

} // namespace bench
