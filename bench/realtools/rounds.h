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

    void noteBlock(double milliseconds) { longestBlock = qMax(longestBlock, milliseconds); }

    int fileCount() const { return files; }
    double medianOf(double (*figure)(const Usage &program, const Usage &floor)) const;
    double longestBlockSeen() const { return longestBlock; } ///< [ms]
    const QVector<QPointF> &processesOverTime() const { return pairs.last().program.processes; }

private:
    struct Pair {
        Usage program;
        Usage floor;
    };

    int files = 0;
    double longestBlock = 0.0; ///< [ms]
    QVector<Pair> pairs;
};

/// Tables, limits and charts of \a all rounds of \a work ("import").
Outcome outcomeOf(const QString &work, const QVector<Rounds> &all);

} // namespace bench
