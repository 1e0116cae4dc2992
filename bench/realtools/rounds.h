// SPDX-License-Identifier: MIT
#pragma once

#include "bench/realtools/mediafolder.h"

#include <QJsonObject>
#include <QString>

#include <functional>

namespace bench
{

/// A benchmark of the real window with the real tools, compared with the floor: the same child processes with
/// nothing in between.
struct RealToolsBenchmark {
    QString work;        ///< "import"
    QString description; ///< for its help
    QString usualFiles;  ///< numbers of files, separated by commas

    /// Does the work with \a files files of \a media, \a count times. Throws Failure.
    std::function<void(MediaFolder &media, int files, int count)> measure;
};

/// The main function of the program "WORK-benchmark".
int runRealToolsBenchmark(int argc, char **argv, const RealToolsBenchmark &benchmark);

/// Measures \a program and \a floor in round number \a round: what disturbs the machine for a while disturbs
/// both, and which one comes first changes from round to round. Returns the figures of both.
QJsonObject measuredRound(int round, const std::function<void()> &program,
                          const std::function<void()> &floor);

/// Prints the \a figures of a round of \a work with \a files files.
void printRound(const QString &work, int files, QJsonObject figures);

} // namespace bench
