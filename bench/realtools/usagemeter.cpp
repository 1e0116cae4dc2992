// SPDX-License-Identifier: MIT
#include "bench/realtools/usagemeter.h"

#include "bench/support/processusage.h"

#include <algorithm>
#include <chrono>
#include <numeric>

namespace bench
{

namespace
{

double secondsOf(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

/// Counts the child processes until it is destroyed.
class ProcessCounter
{
public:
    explicit ProcessCounter(QVector<QPointF> &counts)
        : thread([this, &counts] {
              QElapsedTimer timer;
              timer.start();
              while (!ended) {
                  counts += QPointF(secondsOf(timer), livingChildren());
                  std::this_thread::sleep_for(std::chrono::milliseconds(100));
              }
          })
    {
    }
    ~ProcessCounter()
    {
        ended = true;
        thread.join();
    }
    ProcessCounter(const ProcessCounter &) = delete;
    ProcessCounter &operator=(const ProcessCounter &) = delete;

private:
    std::atomic<bool> ended = false;
    std::thread thread;
};

} // namespace

double Usage::mostProcesses() const
{
    double most = 0.0;
    for (const QPointF &count : processes)
        most = std::max(most, count.y());
    return most;
}

double Usage::meanProcesses() const
{
    const double sum = std::accumulate(processes.cbegin(), processes.cend(), 0.0,
                                       [](double soFar, const QPointF &count) { return soFar + count.y(); });
    return processes.isEmpty() ? 0.0 : sum / processes.size();
}

Usage measured(const std::function<void()> &work)
{
    Usage usage;
    resetPeakMemory();
    QElapsedTimer timer;
    timer.start();
    const double ownBefore = ownCpuTime();
    const double childrenBefore = childrenCpuTime();
    {
        const ProcessCounter counter(usage.processes);
        work();
        usage.time = secondsOf(timer);
    }
    usage.ownCpuTime = ownCpuTime() - ownBefore;
    usage.childCpuTime = childrenCpuTime() - childrenBefore;
    constexpr double mebi = 1024.0 * 1024.0;
    usage.peakMemory = static_cast<double>(peakMemory()) / mebi;
    return usage;
}

} // namespace bench
