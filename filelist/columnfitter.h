// SPDX-License-Identifier: MIT
#pragma once

#include "filelist/contentwidth.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QVector>

class QTableWidget;

/// Makes columns of a table as wide as resizing them to their contents would, without a look at every cell.
class ColumnFitter
{
public:
    /// Fits \a columns of \a table, which must outlive this object.
    ColumnFitter(QTableWidget *table, const QVector<int> &columns);

    /// Notes what the cells of \a rows, not empty, show in \a column: all the same text. Other columns are
    /// ignored.
    void note(const QVector<int> &rows, int column);

    /// Makes \a column as wide as its widest cell and its title need.
    void fit(int column);

    /// Forgets \a rows, ascending and not empty, which leave the table; the rows behind them move up.
    void remove(const QVector<int> &rows, int rowCount);

    /// Measures all cells of the first \a rowCount rows again; the font has changed.
    void measureAgain(int rowCount);

private:
    int widthOf(const QString &text);
    int headerWidth(int column);

    QTableWidget *table;
    QMap<int, ContentWidth> cellWidths; ///< by column
    QHash<QString, int> measuredWidths; ///< [pixels] of cells, by their text
    QHash<int, int> headerWidths;       ///< [pixels] of the titles of columns
};
