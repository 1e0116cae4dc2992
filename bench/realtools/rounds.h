// SPDX-License-Identifier: MIT
#pragma once

#include "bench/realtools/usagemeter.h"
#include "bench/support/benchmarkprogram.h"

#include <QString>
#include <QVector>

#include <functional>

namespace bench
{

/// The program's work and its floor, measured in turn: what disturbs the machine for a while disturbs both.
class Rounds
{
public:
    Rounds() = default;
    /// For rounds of work over \a files files.
    explicit Rounds(int files) : files(files) {}

    /// Measures \a program and \a floor; which one comes first changes from round to round.
    void measure(const std::function<void()> &program, const std::function<void()> &floor);

    /// What ostrel-batch has taken for the work of the last round.
    void noteBatch(const Usage &usage) { pairs.last().batch = usage; }

    void noteBlock(double milliseconds) { longestBlock = qMax(longestBlock, milliseconds); }

    int fileCount() const { return files; }
    bool hasBatch() const { return pairs.last().batch.time > 0.0; }
    double medianOfBatch(double (*figure)(const Usage &batch, const Usage &program)) const;
    double medianOf(double (*figure)(const Usage &program, const Usage &floor)) const;
    double longestBlockSeen() const { return longestBlock; } ///< [ms]
    const QVector<QPointF> &processesOverTime() const { return pairs.last().program.processes; }

private:
    struct Pair {
        Usage program;
        Usage floor;
        Usage batch; ///< without time where it was not measured
    };

    int files = 0;
    double longestBlock = 0.0; ///< [ms]
    QVector<Pair> pairs;
};

/// Tables, limits and charts of \a all rounds of \a work ("import").
Outcome outcomeOf(const QString &work, const QVector<Rounds> &all);

} // namespace bench
