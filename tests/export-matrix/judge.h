// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/expectation.h"

#include <QStringList>

namespace exportmatrix
{

/// What the judges say of a written file.
struct Judgement {
    QStringList faults;        ///< empty = it is right
    QVector<Finding> findings; ///< what became of each thing that the source holds
};

/// Reads the written file at \a path with the system's ffprobe, ffmpeg and mediainfo and reports in what it
/// differs from \a expected. \a source is what it was written from.
Judgement judge(const QString &path, const Expectation &expected, const MadeFile &source);

/// In what the picture of \a source differs from what its list says; nothing = it was made as it should.
QStringList sourceFaults(const MadeFile &source);

} // namespace exportmatrix
