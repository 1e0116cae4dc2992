// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>
#include <QVector>

#include <optional>

/// Whether a new file is what was to come of its source: what is to be asked of both, and what the answers
/// mean. Shares nothing with what makes the files.
namespace verification
{

/// One audio stream that is to arrive.
struct Sound {
    int stream = -1;      ///< in the source
    QVector<int> kept;    ///< its channels that are to arrive, in order
    bool isWhole = false; ///< all of them are
};

/// What is to come of a source.
struct Expectation {
    int picture = -1;             ///< stream of the source; -1 = none
    bool isPictureCopied = false; ///< otherwise it is coded again
    QVector<Sound> sounds;        ///< in order
    bool isWave = false;          ///< a sound file: it starts at a sample, not at a frame
    qint64 timeReference = 0;     ///< [samples since midnight] of a sound file with timecode
};

Expectation expectationOf(const FileData &file, const ExportOptions &options);

/// How the pictures of a source and its new file can be compared.
enum class PictureCheck {
    None,   ///< there is none
    Count,  ///< it is coded again: by the number of frames
    Copy,   ///< by the bytes of each frame
    Decoded ///< the containers write the same frames in other bytes: by what they look like
};

PictureCheck pictureCheck(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe);

/// Whether the samples of the sound number \a i are to be the source's: as they are, or deeper.
bool areSamplesKept(const FileData &file, const Expectation &expected, int i,
                    const QJsonObject &writtenProbe);

/// Arguments of the export tool that make it print a line for each frame of the picture on standard output
/// (see FrameDigest) and a line for each audio stream whose samples are to be kept on standard error; of the
/// source, or of the new file at \a path. Empty where there is nothing to compare.
QStringList sourceArguments(const FileData &file, const Expectation &expected,
                            const QJsonObject &writtenProbe);
QStringList writtenArguments(const QString &path, const FileData &file, const Expectation &expected,
                             const QJsonObject &writtenProbe);

/// Takes in what the tool prints for a picture, in pieces of any size.
class FrameDigest
{
public:
    void add(const QByteArray &piece);

    int frames() const { return count; }
    QByteArray hash() const { return digest; } ///< of the frames; their times do not matter

private:
    QByteArray rest; ///< of a line that is not complete
    int count = 0;
    QByteArray digest; ///< of all frames so far
};

/// What the tool has said of one file.
struct Contents {
    int frames = 0;
    QByteArray picture;
    QByteArray sounds; ///< as it was printed
};

/// The start that the probe tool reads in a file: a timecode, or the number of a sample; empty where there is
/// none.
QString startIn(const QJsonObject &probe);

/// The start timecodes that mediainfo reads in timecode tracks, out of its JSON text.
QStringList startsInMediainfo(const QByteArray &json);

/// The start that the new file of \a file is to have, written like startIn(); empty where it carries no
/// timecode.
QString expectedStart(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe);

/// What is wrong with a new file, for people, one fault each; empty where it is proven. \a mediainfo is empty
/// where that was not asked.
QStringList faults(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe,
                   const QByteArray &mediainfo, const Contents &source, const Contents &written);

/// What was proven of a file without faults, for people.
QString praise(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe,
               const Contents &written);

} // namespace verification
