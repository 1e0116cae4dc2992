// SPDX-License-Identifier: MIT
#pragma once

#include "app/exportoptions.h"
#include "tests/export-matrix/sourcefile.h"

#include <QPair>
#include <QString>
#include <QVector>

#include <optional>

namespace exportmatrix
{

/// One audio stream that the written file must have.
struct ExpectedTrack {
    QString codec;
    int sampleRate = 0;   ///< [samples/s]
    int agreeingBits = 0; ///< up to this depth the samples are the source's; 0 = coded or resampled
    QVector<QPair<int, int>> channels; ///< (track, channel) of the source, in order
};

/// What the export of a source must give.
struct Expectation {
    QString refusal; ///< words of the message where the export must be refused; empty = a file must come

    QString pictureCodec; ///< empty = no picture
    QString pixelFormat;
    int width = 0;
    int height = 0;
    QString pictureRate;
    int frames = 0;
    QVector<ExpectedTrack> tracks;
    std::optional<QString> timecode;     ///< start timecode of a file with a picture; none = not judged
    std::optional<qint64> timeReference; ///< [samples since midnight] of a sound file
    QString comment;                     ///< of a sound file
};

/// What exporting \a file with \a options must give.
Expectation expectationOf(const MadeFile &file, const ExportOptions &options);

} // namespace exportmatrix
