// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QJsonObject>

/// Tells the sound files of the table that were recorded at the same moment: WAV files with equal
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

/// What the reader has told of \a source, as its siblings take it over: together with the rate, "SampleRate"
/// [samples per second], at which its samples are counted, which theirs need not be.
QJsonObject passedOnResult(const FileData &source);

} // namespace linking
