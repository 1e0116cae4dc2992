// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QTimer>

namespace bench
{

/// Watches how long the event loop of its thread leaves everything else waiting.
///
/// A timer beats at a steady pace. Between two beats the loop was in one round of slots and paintings, or
/// waited; a key that is pressed in that time is answered after it. What slots take is so measured from
/// outside of them.
class EventLoopWatch
{
public:
    /// Beats every \a interval milliseconds. A beat takes some microseconds, and no shorter block is
    /// reported.
    explicit EventLoopWatch(int interval);

    /// Begins a new measurement.
    void restart();

    /// The longest time between two beats since restart(), and up to now [ms].
    double longestBlock() const;

private:
    QTimer timer;
    QElapsedTimer sinceBeat;
    qint64 longest = 0; ///< [ns]
};

} // namespace bench
