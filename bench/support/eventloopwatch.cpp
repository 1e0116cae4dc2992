// SPDX-License-Identifier: MIT
#include "bench/support/eventloopwatch.h"

namespace bench
{

EventLoopWatch::EventLoopWatch(int interval)
{
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(interval);
    connect(&timer, &QTimer::timeout, this, &EventLoopWatch::beat);
    timer.start();
    restart();
}

void EventLoopWatch::restart()
{
    longest = 0;
    sinceBeat.start();
}

double EventLoopWatch::longestBlock() const
{
    return static_cast<double>(qMax(longest, sinceBeat.nsecsElapsed())) * 1e-6;
}

void EventLoopWatch::beat()
{
    longest = qMax(longest, sinceBeat.nsecsElapsed());
    sinceBeat.start();
}

} // namespace bench
