// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// A table that is printed line by line, while its later cells are not known yet.
///
/// Its columns are as wide as their titles or as was asked for, whichever is more; a longer cell moves the
/// rest of its line.
class PrintedTable
{
public:
    struct Column {
        QString title;
        int width = 0; ///< [characters] of the longest cell that is expected
    };

    explicit PrintedTable(const QVector<Column> &columns);

    /// Titles and a ruler: two lines.
    QString header() const;

    QString line(const QStringList &cells) const;

private:
    QStringList titles;
    QVector<int> widths; ///< [characters]
};
