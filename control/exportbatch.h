// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <variant>

/// Counts the files of an export batch, from its request to its end or its cancelling, and decides what the
/// controller says about it. Each call returns the signals to send, in order.
class ExportBatch
{
public:
    /// exportProgress()
    struct Progress {
        int current = 0;
        int total = 0;
        QString statusMsg;
    };
    /// exportStarted()
    struct Started {
    };
    /// exportReady()
    struct Ready {
        int result = 0;
        QStringList failedFiles;
    };
    using Signals = QVector<std::variant<Progress, Started, Ready>>;

    /// A batch of \a files begins; without files it ends unheard.
    Signals start(int files, const ExportOptions &options);

    /// A running export has advanced by \a units.
    Signals addProgress(uint units);

    /// The user cancels. Files that have not started are to be dropped from now on.
    Signals cancel();

    /// A file that was still being handed out is dropped.
    Signals drop();

    /// A file is dropped out of the queue.
    Signals dropQueued();

    /// The export of \a fileName has ended.
    Signals finish(const QString &fileName, int exitCode);

    bool isCancelled() const { return exportCancelRequested; }
    int fileCount() const { return static_cast<int>(exportFileCount); }

    /// The options of the batch; progressSteps is what one file is worth.
    const ExportOptions &options() const { return exportOptions; }

private:
    Progress progress() const;
    Progress finishedFiles() const;
    Signals endCancelled();
    void resetCounters();

    ExportOptions exportOptions;
    QString statusMsg;                  ///< goes with every progress
    uint exportFileCount = 0;           ///< files of the batch
    uint exportFinishedCount = 0;       ///< exported, failed or dropped by cancelling
    uint exportProgressValue = 0;       ///< progress units so far
    bool exportCancelRequested = false; ///< until the next batch
    bool exportAllSucceeded = true;     ///< no file of the batch has failed
    QStringList exportErrorFileNames;   ///< names of the files that have failed
};
