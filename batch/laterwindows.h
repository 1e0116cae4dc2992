// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "batch/laterfinding.h"

#include <QString>
#include <QStringList>

/// Timecode that begins later than in the first seconds of a file: in which windows it is looked for, and
/// what it says about the file's first sample.
namespace laterwindows
{

constexpr int windowSeconds = 3; // [s] as long as the one that each file is read in

/// How many windows \a file has, with the first one, in which nothing was found.
int count(const FileData &file);

/// Arguments of the media tool that write the window from \a second on, each audio stream into a file of its
/// own in \a folder: see toolarguments::extractedPath(). In coded sound it may begin some samples off.
QStringList extraction(const FileData &file, const QString &folder, int second);

/// Arguments that write the window from \a second on and the next one, of one \a stream, into two files in
/// \a folder: see exactPath(). They begin at the very sample, as all before them is decoded and counted.
QStringList exactExtraction(const FileData &file, const QString &folder, int stream, int second);

/// Path of the first (0) or second (1) of these files.
QString exactPath(const QString &folder, int number);

/// Why the labels that the reader found in \a path do not count up, by what it printed on standard error;
/// empty where it found none, or could not read them.
QString labelFault(const QByteArray &standardError, const QString &path);

/// The reader's results of three windows of one stream.
struct Readings {
    QJsonObject found; ///< the one in which timecode was found
    QJsonObject exact; ///< the same, by counted samples
    QJsonObject next;  ///< the one after it, by counted samples
};

/// What \a readings of \a stream from \a second on say about the first sample of \a file. Found, or NotFound
/// with a reason: where they do not belong to one timecode, where the sound before has gaps, and where the
/// way back is too long for the difference of the clocks.
LaterFinding countedBack(const FileData &file, int stream, int second, const Readings &readings);

} // namespace laterwindows
