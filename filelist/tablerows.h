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

/// Removes \a removed, ascending and not empty, from \a table, whose cells take what they show from the
/// records and so have moved up already: the table gives its end away in one step. Nothing is selected then.
void closeUp(QTableWidget &table, const QVector<int> &removed);

/// Where the current \a row stands when \a removed, ascending, are gone from \a rowCount rows: a removed one
/// passes on to the row above that stays, or to the first below. -1 = there is none.
int currentAfterRemoval(int row, const QVector<int> &removed, int rowCount);

} // namespace tablerows
