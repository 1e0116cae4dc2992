// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "filelist/linking.h"
#include "filelist/pendingwork.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QVector>

/// How far a row has come; the values themselves are in its record.
struct RowStatus {
    enum class FileTC { Unprobed, Found, NotFound };
    enum class AudioTC { Unread, Found, Linked, NotFound, ReadFailed, ProbeFailed };

    FileTC fileTC = FileTC::Unprobed;
    AudioTC audioTC = AudioTC::Unread;
    int exitCode = 0;   ///< of a reading or probe that failed
    QString sourceName; ///< name of the file that a linked timecode was taken from

    /// Whether the last reading has found a timecode, or found that there is none.
    bool isAnswered() const { return audioTC == AudioTC::Found || audioTC == AudioTC::NotFound; }
};

/// The records of the imported files, one a row, and all that is decided about them. Knows nothing of
/// windows.
///
/// Results find their row by its number; a number without a row is ignored.
class ImportedFiles
{
public:
    /// What a result has changed. Nothing where \a row is -1.
    struct Changes {
        int row = -1; ///< the row of the result
        bool fileTC = false;
        bool duration = false;
        bool audioTC = false;
        QVector<int> linkedRows; ///< other rows, ascending: their audio timecode is now that of the row
    };

    ImportedFiles();

    int count() const { return static_cast<int>(fileDataVector.size()); }
    bool contains(int row) const { return row >= 0 && row < count(); }

    /// The record of the existing \a row.
    const FileData &record(int row) const { return fileDataVector.at(row); }
    const RowStatus &status(int row) const { return statuses.at(row); }

    /// The numbers of all rows, ascending.
    QVector<int> allRows() const;

    PendingWork &pendingWork() { return work; }
    const PendingWork &pendingWork() const { return work; }

    /// Appends a row for \a file and returns its number.
    int add(const QFileInfo &file);

    /// Takes the result of a probe. The row is ready to be read when \a exitCode is 0.
    Changes takeProbe(const FileData &probed, int row, int exitCode);

    /// Takes the timecode reader's \a result for \a row, read from its stream \a streamIndex. Sound files
    /// that were recorded together with it take its timecode over.
    Changes takeReading(const QJsonObject &result, int row, int streamIndex, int exitCode);

    /// The records of \a rows, which exist, for a second reading, which is pending from now on.
    QVector<FileData> takeForReading(const QVector<int> &rows);

    /// The records of \a rows, which exist, that an export with \a options takes.
    QVector<FileData> takeForExport(const QVector<int> &rows, const ExportOptions &options);

    /// Removes \a rows, which exist, ascending; those behind them move up. Refused while an import is under
    /// way. Returns whether they were removed.
    bool remove(const QVector<int> &rows);

private:
    void takeTimecode(const QJsonObject &result, int streamIndex, Changes &changes);
    void takeNoTimecode(Changes &changes);
    void link(int row, const linking::Link &link);
    QVector<int> rowsOfMoment(const FileData &file) const;
    void indexRow(int row);

    QVector<FileData> fileDataVector;      ///< one record per row, in row order
    QVector<RowStatus> statuses;           ///< in the same order
    QHash<qint64, QVector<int>> soundRows; ///< rows of WAV files, by modification time [ms since epoch]
    PendingWork work;
};
