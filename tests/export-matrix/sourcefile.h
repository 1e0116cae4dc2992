// SPDX-License-Identifier: MIT
#pragma once

#include "app/filedata.h"
#include "demo/mediakit/recording.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace exportmatrix
{

/// One media file to export, and how the system's tool makes it. Each channel carries a tone of its own or
/// timecode.
struct SourceFile {
    QString name;                        ///< for people; also the file's name, with its suffix
    QString pictureRate;                 ///< [frames per second] as a fraction; empty = sound only
    QStringList pictureArguments;        ///< codec of the picture
    QVector<mediakit::Track> tracks;     ///< one audio stream each
    QVector<QStringList> trackArguments; ///< codec of each stream, "%1" stands for its number
    QStringList fileArguments;           ///< of the file as a whole
    int sampleRate = 48000;              ///< [samples/s]
    bool hasCover = false;               ///< a still image comes as a second picture stream
    bool isCore = false;                 ///< one of those that each test run exports
};

constexpr double sourceDuration = 0.4; // [s] ten frames at 25: coding the pictures takes most of the time

/// The recording that \a source is, as far as its sound goes.
mediakit::Recording soundOf(const SourceFile &source);

/// Samples of one channel.
using Samples = std::vector<float>;

/// A source file that lies on the disk.
struct MadeFile {
    SourceFile source;
    QVector<std::vector<Samples>> samples; ///< of all channels, one list for each audio stream
    FileData record;                       ///< what the application knows once the timecode was read
};

/// Makes \a source below \a folder. Throws std::runtime_error when that fails.
MadeFile makeSource(const SourceFile &source, const QString &folder);

} // namespace exportmatrix
