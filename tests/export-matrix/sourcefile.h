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

constexpr double sourceDuration = 1.0; // [s]

/// The recording that \a source is, as far as its sound goes.
mediakit::Recording soundOf(const SourceFile &source);

/// Samples of all channels of \a source, one list for each audio stream.
QVector<std::vector<std::vector<float>>> samplesOf(const SourceFile &source);

/// Makes \a source below \a folder. Returns an empty text, or what went wrong.
QString makeSource(const SourceFile &source, const QString &folder);

/// The record that the application has of the file \a source at \a path once its timecode was read.
FileData recordOf(const SourceFile &source, const QString &path);

} // namespace exportmatrix
