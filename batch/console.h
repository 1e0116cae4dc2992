// SPDX-License-Identifier: MIT
#pragma once

#include "batch/printedtable.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QVector>

/// What the run shows: the table on standard output, progress and problems on standard error. Where that is a
/// terminal, progress is a bar that is drawn over and over; elsewhere a line now and then.
class Console
{
public:
    /// \a quiet: only problems are shown.
    explicit Console(bool quiet);

    /// Begins the table, once.
    void beginTable(const QVector<PrintedTable::Column> &columns);
    void showRow(const QStringList &cells);

    void showProgress(const QString &what, int done, int total);

    /// Says what is wrong, in one line of its own.
    void showProblem(const QString &text);

    /// The work is done: takes the bar away.
    void clearBar();

private:
    bool quiet;
    bool isTerminal; ///< standard error is one
    bool isBarShown = false;
    PrintedTable table{{}};
    QString workShown; ///< what progress was shown of last
    int doneShown = 0;
    QElapsedTimer sinceBegin; ///< of that work
};
