// SPDX-License-Identifier: MIT
#pragma once

#include <QTemporaryDir>

namespace bench
{

/// Puts tools into PATH that start and never end: the real controller starts as many as it may, and
/// everything else waits in its queues, until the benchmark's own results come.
class HangingTools
{
public:
    HangingTools();

private:
    QTemporaryDir folder;
};

} // namespace bench
