// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "testkit/media/recording.h"
#include "tests/export-matrix/filefacts.h"
#include "tests/export-matrix/pictureshape.h"
#include "tests/export-matrix/wavechunks.h"

#include <QJsonArray>
#include <QJsonObject>
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
    double duration = 0.4;               ///< [s] ten frames at 25: coding the pictures takes most of the time
    PictureShape shape;                  ///< of the test card; without one another picture is made
    QStringList chapters;                ///< titles, evenly spread
    QVector<wavechunks::Chunk> chunks;   ///< of a sound file
    bool hasCover = false;               ///< a still image comes as a second picture stream
    bool hasDataTrack = false;           ///< of a sensor, in MP4 files
    bool hasWaveringRate = false;        ///< frames come early and late, as from telephones
    bool isCutOff = false;               ///< ends before what its header promises
    bool isRead = true;                  ///< the application has probed it and read its timecode
    bool isOneSoundEach = false; ///< exported with one type of sound each, with and without its timecode
    bool isOfDay = false;        ///< one of a large day's files
    bool isShape = false;        ///< of a day's files, one of a kind that the others repeat
    bool isCore = false;         ///< one of those that each test run exports
};

/// The recording that \a source is, as far as its sound goes.
mediakit::Recording soundOf(const SourceFile &source);

/// Samples of one channel.
using Samples = std::vector<float>;

/// A source file that lies on the disk.
struct MadeFile {
    SourceFile source;
    QVector<std::vector<Samples>> samples; ///< of all channels, one list for each audio stream
    FileData record;                       ///< what the application knows when it exports
    QJsonObject probe;                     ///< streams, chapters and format, by the probe tool
    Facts facts;                           ///< in addition to pictures and samples

    /// The probe's audio stream number \a track.
    QJsonObject audioStream(int track) const;

    /// Its moving picture; empty where there is none.
    QJsonObject picture() const;
};

/// What the probe tool says of the file at \a path.
QJsonObject probeOf(const QString &path);

/// The facts of the file at \a path, whose probe is \a probe. Its audio streams are those of the source that
/// \a audioNumbers names, the channels of a sound file those that \a channels names.
Facts factsOfFile(const QString &path, const QJsonObject &probe, const QVector<int> &audioNumbers,
                  const QVector<int> &channels);

/// What mediainfo says of the tracks of the file at \a path.
QJsonArray mediainfoOf(const QString &path);

/// Makes \a source below \a folder. Throws std::runtime_error when that fails.
MadeFile makeSource(const SourceFile &source, const QString &folder);

} // namespace exportmatrix
