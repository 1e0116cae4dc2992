// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QVector>

/// Knows which rows are still open during an import: those that a result may yet change.
///
/// A row is answered when its probe has failed, its extraction has failed or each of its streams was read. It
/// is settled, and stays so, when those that it may share a timecode with are answered too: the WAV files of
/// its modification time.
class OpenRows
{
public:
    /// Adds the next row.
    void add(const FileData &file);

    /// The probe of \a row has ended well; \a streams of it will be read. Without any, one failure is to
    /// come.
    void takeProbe(int row, int streams);

    /// One result of a reading has come for \a row. Returns the rows that are settled now, ascending.
    QVector<int> takeReading(int row);

    /// \a row is answered: no more results will come. Returns the rows that are settled now, ascending.
    QVector<int> takeFailure(int row);

    /// Settles all that is still open, ascending: the import has ended.
    QVector<int> takeRest();

private:
    struct Row {
        qint64 moment = -1; ///< [ms since epoch] of WAV files; -1 = shares no timecode
        int awaited = 1;    ///< results to come
        bool isSettled = false;
    };

    QVector<int> settle(int row);

    QVector<Row> rows;
};
