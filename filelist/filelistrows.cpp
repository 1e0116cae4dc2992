// SPDX-License-Identifier: MIT
// Which rows of the file table are chosen, how they are copied and how they go.
#include "filelist/filelist.h"
#include "filelist/tablecolumns.h"
#include "filelist/tablecopy.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalBlocker>

#include <algorithm>
#include <numeric>
#include <utility>

QVector<int> FileList::selectedRows() const
{
    QVector<int> rows;
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            if (hasRecord(row))
                rows.append(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

QVector<int> FileList::chosenRows(bool all) const
{
    if (!all)
        return selectedRows();
    QVector<int> rows(fileDataVector.size());
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

void FileList::copySelectedRows()
{
    QStringList header;
    for (int column = 0; column < ColumnCount; ++column)
        header += horizontalHeaderItem(column)->text();
    QVector<QStringList> cells;
    const QVector<int> rows = selectedRows();
    for (const int row : rows) {
        QStringList line;
        for (int column = 0; column < ColumnCount; ++column)
            line += item(row, column)->text();
        cells += line;
    }
    if (!cells.isEmpty())
        QGuiApplication::clipboard()->setText(tabSeparated(header, cells));
}

void FileList::deleteSelectedRows()
{
    if (importBusy)
        return;
    const QVector<int> rows = selectedRows();
    if (!rows.isEmpty())
        removeRows(rows);
}

/// Removes \a rows, ascending and not empty. The rows that stay close up first, so that the table gives its
/// end away in one step: removed one by one, each row would move all rows behind it.
void FileList::removeRows(const QVector<int> &rows)
{
    leaveAllLinks(rows);
    const int current = currentRowWithout(rows);
    const int currentColumnBefore = currentColumn();
    selectionModel()->clear();

    int kept = rows.first();
    int removed = 0;
    {
        const QSignalBlocker noChangeOfCells(model());
        for (int row = kept; row < fileDataVector.size(); ++row) {
            if (removed < rows.size() && rows.at(removed) == row)
                ++removed;
            else
                moveRow(row, kept++);
        }
    }
    for (ContentWidth &widths : cellWidths)
        widths.remove(kept, removed);
    fileDataVector.remove(kept, removed);
    model()->removeRows(kept, removed);
    if (rowCount() > 0)
        emit model()->dataChanged(model()->index(0, 0), model()->index(rowCount() - 1, ColumnCount - 1));
    if (current >= 0)
        selectionModel()->setCurrentIndex(model()->index(current, currentColumnBefore),
                                          QItemSelectionModel::NoUpdate);
}

/// Where the current row stands when \a rows are gone: a removed one hands over to the row above that stays,
/// or to the first below. -1 = there is none.
int FileList::currentRowWithout(const QVector<int> &rows) const
{
    const int row = currentRow();
    const auto place = std::lower_bound(rows.cbegin(), rows.cend(), row);
    const auto removedAbove = static_cast<int>(place - rows.cbegin());
    const bool goes = place != rows.cend() && *place == row;
    if (row < 0 || (goes && rows.size() == fileDataVector.size()))
        return -1;
    return goes ? qMax(0, row - removedAbove - 1) : row - removedAbove;
}

void FileList::moveRow(int from, int to)
{
    for (int column = 0; column < ColumnCount; ++column)
        setItem(to, column, takeItem(from, column));
    fileDataVector[to] = std::move(fileDataVector[from]);
    for (ContentWidth &widths : cellWidths)
        widths.move(from, to);
}
