// SPDX-License-Identifier: MIT
#pragma once

#include <QTableWidget>
#include <QVector>

/// Which rows of a table are selected, and what happens to them.
namespace tablerows
{

/// The selected ones of the first \a count rows of \a table, ascending.
QVector<int> selected(const QTableWidget &table, int count);

/// Puts \a rows of \a table, with its header, on the clipboard; nothing when there are none.
void copy(const QTableWidget &table, const QVector<int> &rows);

/// Removes \a removed, ascending and not empty, from \a table. Its cells take their text from the records,
/// which have moved up already, so only the end of the table is removed. Nothing is selected afterwards.
void closeUp(QTableWidget &table, const QVector<int> &removed);

/// Position of the current \a row after \a removed, ascending, have been removed from \a rowCount rows. A
/// removed row is replaced by the remaining row above, or by the first one below. -1 = there is none.
int currentAfterRemoval(int row, const QVector<int> &removed, int rowCount);

} // namespace tablerows
