// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QQueue>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

/// Decides which job starts now and which one waits.
///
/// Counts the running jobs of all kinds against one limit and keeps one first-in-first-out queue for each
/// kind.
class JobQueues
{
public:
    static constexpr int maximumRunning = 45; ///< child processes of all kinds together

    /// In the order in which the queues are served.
    enum Kind { Probe, Extraction, Reading, Export, KindCount };

    /// Lets no more than \a count jobs run together, 1 ... maximumRunning; a value outside is brought into
    /// that range.
    void setLimit(int count) { limit = std::clamp(count, 1, maximumRunning); }

    /// Whether one more job of \a kind may start now.
    bool mayStart(Kind kind) const { return !isHeld[kind] && running() < limit; }

    /// Keeps jobs of \a kind from starting until they are no longer held; they wait in their queue.
    void setHeld(Kind kind, bool held) { isHeld[kind] = held; }

    void started(Kind kind) { ++runningJobs[kind]; }

    /// Takes note that a job has ended; without one that runs nothing changes.
    void finished(Kind kind);

    /// Jobs that run, of all kinds. Readers of one file start together and may exceed the limit.
    int running() const;

    /// Whether a job of \a kind runs or waits.
    bool isBusy(Kind kind) const { return runningJobs[kind] > 0 || !waiting[kind].isEmpty(); }

    void enqueue(Kind kind, const FileData &file) { waiting[kind].enqueue(file); }

    /// Takes the longest waiting file of \a kind out of its queue; nothing while it may not start.
    std::optional<FileData> takeNext(Kind kind);

    /// Serves each queue once, in order: takes its next file, if one may start, and gives it to \a start.
    /// Returns whether any file has left its queue.
    bool serve(const std::function<void(Kind kind, const FileData &file)> &start);

private:
    int limit = maximumRunning; ///< jobs of all kinds together
    std::array<int, KindCount> runningJobs{};
    std::array<bool, KindCount> isHeld{};
    std::array<QQueue<FileData>, KindCount> waiting;
};
