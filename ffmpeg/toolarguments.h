// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QStringList>
#include <QVector>

/// Argument lists of the runs that describe a media file and that take its sound out.
namespace toolarguments
{

/// Arguments that make the probe tool describe \a mediaPath as one JSON object.
QStringList probe(const QString &mediaPath);

/// The indexes of the audio streams of \a file among its streams, in order.
QVector<int> audioStreams(const FileData &file);

/// Path of the WAV file that takes the audio stream \a stream (index in the file's streams) of \a file. Its
/// name ends in "_<stream>_<row>.wav", which later shows where it came from. A name that would be too long
/// for a file system is cut before that.
QString extractedPath(const FileData &file, const QString &targetFolder, int stream);

/// Arguments that write the first three seconds of each audio stream of \a file to a WAV file of its own.
QStringList audioExtraction(const FileData &file, const QString &targetFolder);

} // namespace toolarguments
