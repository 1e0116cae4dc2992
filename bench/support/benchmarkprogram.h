// SPDX-License-Identifier: MIT
#pragma once

#include "bench/support/chart.h"
#include "bench/support/figures.h"

#include <QCommandLineParser>
#include <QString>
#include <QVector>

#include <functional>
#include <stdexcept>

namespace bench
{

/// Why a benchmark cannot go on, in one line for the user.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const QString &reason) : std::runtime_error(reason.toStdString()) {}
};

struct Outcome {
    Figures figures;
    QVector<Chart> charts;
};

/// The frame of a benchmark program: its options, what it prints, what it writes to files.
///
/// Besides the options of its own, which are added before, a benchmark has --json, --plot and --help. Needs
/// the application object.
class BenchmarkProgram
{
public:
    BenchmarkProgram(const QString &name, const QString &description);

    /// Adds the option \a name, whose value is \a usual unless it is given: a number, or several parted by
    /// commas.
    void addOption(const QString &name, const QString &description, const QString &usual);

    /// Reads the options, measures and reports. Returns the exit code: 0; 1 when a limit was missed; 2 when
    /// the options, a file or a tool stood in the way.
    int run(const std::function<Outcome()> &measure);

    /// The value of the option \a name, whole numbers from \a least up parted by commas. Throws Failure.
    QVector<int> numbers(const QString &name, int least = 1) const;
    int number(const QString &name, int least = 1) const;

private:
    void report(const Outcome &outcome) const;

    QString programName;
    QCommandLineParser commandLine;
};

/// Reports on standard error what is being done.
void tellProgress(const QString &text);

} // namespace bench
