// SPDX-License-Identifier: MIT
#pragma once

#include "batch/batchoptions.h"
#include "batch/batchrun.h"
#include "batch/console.h"
#include "batch/exitcode.h"
#include "control/maincontrol.h"

#include <QObject>

/// The program without a window, from its options to its exit code: shows what the run reports, and writes
/// the reports at its end.
class BatchProgram : public QObject
{
    Q_OBJECT

public:
    explicit BatchProgram(const BatchOptions &options);

    /// Checks what the run needs before it begins, and begins. Returns Done when it has begun; otherwise
    /// nothing goes on and the reason was shown.
    ExitCode start();

    /// Makes one report of the reports that the options name.
    ExitCode join();

public slots:
    /// Ends the run in good order; when called again, at once and without reports.
    void interrupt();

signals:
    /// \a exitCode is an ExitCode.
    void finished(int exitCode);

private slots:
    void onRowDone(int row);
    void onEnded();

private:
    bool areReportsWritable();
    bool writeReports(const QJsonArray &records);

    BatchOptions options;
    MainControl control;
    BatchRun run;
    Console console;
    bool isTableBegun = false;
    bool isInterrupted = false;
};
