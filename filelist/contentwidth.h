// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QVector>

/// The widest cell of a column, known without looking at every row after each change.
///
/// Holds one width per row; a change costs the logarithm of the number of different widths.
class ContentWidth
{
public:
    /// Notes that the cell of \a row is \a width pixels wide. Rows not noted before are 0 wide.
    void set(int row, int width);

    /// Forgets \a count rows from \a row on; the rows behind them move up.
    void remove(int row, int count);

    void clear();

    /// Width of the widest cell [pixels]; 0 without rows.
    int widest() const;

private:
    void forget(int width);

    QVector<int> widths;        ///< [pixels] by row
    QMap<int, int> rowsOfWidth; ///< width [pixels] to the number of rows that have it
};
