// SPDX-License-Identifier: MIT
#pragma once

#include "app/filedata.h"

#include <QQueue>

#include <array>
#include <optional>

/// Decides which job starts now and which one waits.
///
/// Counts the running jobs of all kinds against one limit and keeps one first-in-first-out queue for each
/// kind.
class JobQueues
{
public:
    static constexpr int maximumRunning = 45; ///< child processes of all kinds together

    enum Kind { Probe, Extraction, Reading, Export, KindCount };

    /// Whether one more job may start now.
    bool mayStart() const { return running() < maximumRunning; }

    void started(Kind kind) { ++runningJobs[kind]; }

    /// Takes note that a job has ended; without one that runs nothing changes.
    void finished(Kind kind);

    /// Jobs that run, of all kinds. Readers of one file start together and may exceed the limit.
    int running() const;

    /// Whether a job of \a kind runs or waits.
    bool isBusy(Kind kind) const { return runningJobs[kind] > 0 || isWaiting(kind); }

    bool isWaiting(Kind kind) const { return !waiting[kind].isEmpty(); }

    void enqueue(Kind kind, const FileData &file) { waiting[kind].enqueue(file); }

    /// Takes the longest waiting file of \a kind out of its queue; nothing while the limit is reached.
    std::optional<FileData> takeNext(Kind kind);

private:
    std::array<int, KindCount> runningJobs{};
    std::array<QQueue<FileData>, KindCount> waiting;
};
