// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace bench
{

/// CPU time that this process has used so far, in user and system mode [s].
double ownCpuTime();

/// CPU time that the calling thread has used so far [s].
double threadCpuTime();

/// CPU time of the child processes that have ended so far, and of theirs [s].
double childrenCpuTime();

/// Heap in use by this process [bytes].
qint64 heapInUse();

/// Gives memory that is free back to the system. Otherwise each start of a tool after a large table would
/// copy its traces.
void releaseFreeMemory();

/// The most memory that this process has held at one time since resetPeakMemory() [bytes].
qint64 peakMemory();
void resetPeakMemory();

/// Child processes of this process that are alive now.
int livingChildren();

} // namespace bench
