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

    /// Gives the width of the row \a from to the row \a to, both noted before; the row \a from is 0 wide
    /// then.
    void move(int from, int to);

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
