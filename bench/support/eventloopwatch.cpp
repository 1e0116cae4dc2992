// SPDX-License-Identifier: MIT
#include "bench/support/eventloopwatch.h"

namespace bench
{

EventLoopWatch::EventLoopWatch(int interval)
{
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
        longest = qMax(longest, sinceBeat.nsecsElapsed());
        sinceBeat.start();
    });
    timer.start(interval);
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

} // namespace bench
