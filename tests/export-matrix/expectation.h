// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "tests/export-matrix/keeping.h"
#include "tests/export-matrix/sourcefile.h"
#include "tests/export-matrix/writtenpicture.h"

#include <QPair>
#include <QString>
#include <QVector>

#include <optional>

namespace exportmatrix
{

/// One audio stream that the written file must have.
struct ExpectedTrack {
    QString codec;
    int sampleRate = 0;      ///< [samples/s]
    int agreeingBits = 0;    ///< up to this depth the samples are the source's; 0 = coded or resampled
    qint64 leastBitRate = 0; ///< [bits/s] of a coded stream; 0 = any
    QVector<QPair<int, int>> channels; ///< (track, channel) of the source, in order
};

/// What the export of a source must give.
struct Expectation {
    Target target = Target::CopiedMov;
    QString refusal; ///< words of the message where the export must be refused; empty = a file must come
    bool leavesHalf = false; ///< what the tool had written until it was refused stays, as "NAME.incomplete"

    QString pictureCodec; ///< empty = no picture
    QString pixelFormat;
    int width = 0;
    int height = 0;
    QString pictureRate; ///< empty = any
    int frames = 0;
    WantedPicture card; ///< how a test card must arrive
    QVector<ExpectedTrack> tracks;
    std::optional<QString> timecode;     ///< start timecode of a file with a picture; none = not judged
    std::optional<qint64> timeReference; ///< [samples since midnight] of a sound file
    QString comment;                     ///< of a sound file
    Facts facts;                         ///< of the source, as far as they must not change
};

/// What exporting \a file with \a options must give.
Expectation expectationOf(const MadeFile &file, const ExportOptions &options);

} // namespace exportmatrix
