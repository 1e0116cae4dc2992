// SPDX-License-Identifier: MIT
#pragma once

#include "app/filedata.h"

#include <QMultiHash>
#include <QVector>

/// Finds the sound files of the table that were recorded at the same moment: WAV files with equal
/// modification times and durations closer than 0.05 s. Recorders that split a take into several files leave
/// such siblings.
namespace linking
{

/// Whether \a file is a WAV file by its suffix, in any case.
bool isWave(const FileData &file);

/// Whether two different files, \a first and \a second, are siblings of one recording.
bool recordedTogether(const FileData &first, const FileData &second);

/// Rows of all siblings of \a row, ascending. \a row must be a row of \a files. The plain scan.
QVector<int> siblings(const QVector<FileData> &files, int row);

/// Keeps the rows of WAV files by modification time, so that siblings are found without a look at every row.
class Index
{
public:
    /// Notes that \a row now holds \a file.
    void add(int row, const FileData &file);

    /// Forgets everything and notes all of \a files; needed when rows have moved.
    void rebuild(const QVector<FileData> &files);

    /// The same rows as the plain scan of \a files gives.
    QVector<int> siblings(const QVector<FileData> &files, int row) const;

private:
    QMultiHash<qint64, int> rowsByTime; ///< modification time [ms since the epoch] to row, WAV files only
};

} // namespace linking
