// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/media/recording.h"

namespace mediakit
{

/// One recording situation.
struct Sample {
    QString situation; ///< in words
    Recording recording;
};

/// One small file per recording situation that the program has to cope with.
QVector<Sample> sampleKit();

/// The text that goes with the files: situation and what the program should show, file by file.
QString describe(const QVector<Sample> &samples);

/// Makes all files and the text, READ-ME.txt, in \a folder, which must be new or empty. Returns an empty
/// text, or what went wrong.
QString writeSampleKit(const QString &folder);

} // namespace mediakit
