// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QJsonObject>
#include <QString>

/// Finds the sound files of the table that were recorded at the same moment: WAV files with equal
/// modification times and durations closer than 0.05 s. Recorders that split a take into several files leave
/// such siblings.
namespace linking
{

/// Whether \a file is a WAV file by its suffix, in any case.
bool isWave(const FileData &file);

/// Whether two durations [s] are those of siblings.
bool areClose(double first, double second);

/// Whether two different files, \a first and \a second, are siblings of one recording.
bool recordedTogether(const FileData &first, const FileData &second);

/// What the reader has reported of \a source, as its siblings take it over: together with the rate,
/// "SampleRate" [samples per second], at which its samples are counted, which theirs need not be.
QJsonObject passedOnResult(const FileData &source);

/// A timecode that one file passes on to its siblings.
struct Link {
    int sourceRow = -1; ///< of that file
    QString sourceName; ///< name of that file
    QString timecode;
    QJsonObject result; ///< of the timecode reader
};

/// The link to \a source in the row \a sourceRow.
Link linkTo(const FileData &source, int sourceRow);

} // namespace linking
