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

/// Counts the child processes while some work is done.
class ProcessCounter
{
public:
    ProcessCounter() : thread([this] { count(); }) {}
    ~ProcessCounter() { stop(); }
    ProcessCounter(const ProcessCounter &) = delete;
    ProcessCounter &operator=(const ProcessCounter &) = delete;

    void stop()
    {
        ended = true;
        if (thread.joinable())
            thread.join();
    }

    // Both are there once it is stopped.
    const QVector<QPointF> &counts() const { return processes; }
    double cpuTime() const { return ownCost; } ///< of the counting itself [s]

private:
    void count()
    {
        QElapsedTimer timer;
        timer.start();
        while (!ended) {
            processes += QPointF(secondsOf(timer), livingChildren());
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        ownCost = threadCpuTime();
    }

    std::atomic<bool> ended = false;
    QVector<QPointF> processes;
    double ownCost = 0.0;
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
    return processes.isEmpty() ? 0.0 : sum / static_cast<double>(processes.size());
}

Usage measured(const std::function<void()> &work)
{
    Usage usage;
    resetPeakMemory();
    QElapsedTimer timer;
    timer.start();
    const double ownBefore = ownCpuTime();
    const double childrenBefore = childrenCpuTime();
    ProcessCounter counter;
    work();
    usage.time = secondsOf(timer);
    counter.stop();
    usage.processes = counter.counts();
    usage.ownCpuTime = ownCpuTime() - ownBefore - counter.cpuTime();
    usage.childCpuTime = childrenCpuTime() - childrenBefore;
    constexpr double mebi = 1024.0 * 1024.0;
    usage.peakMemory = static_cast<double>(peakMemory()) / mebi;
    return usage;
}

} // namespace bench
