// SPDX-License-Identifier: MIT
#pragma once

#include "bench/realtools/mediafolder.h"
#include "bench/realtools/rounds.h"

#include <QString>

#include <functional>

namespace bench
{

/// A benchmark of the real window with the real tools, compared with the floor.
struct RealToolsBenchmark {
    QString work;        ///< "import"
    QString description; ///< for its help
    QString usualFiles;  ///< numbers of files, parted by commas

    /// Does the work with \a files files of \a media, \a count times. Throws Failure.
    std::function<Rounds(MediaFolder &media, int files, int count)> measure;
};

/// The main function of the program "WORK-benchmark".
int runRealToolsBenchmark(int argc, char **argv, const RealToolsBenchmark &benchmark);

/// Reports on standard error which of \a count rounds begins.
void tellRound(const QString &work, int files, int round, int count);

} // namespace bench
