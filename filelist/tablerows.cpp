// SPDX-License-Identifier: MIT
#include "filelist/tablerows.h"

#include "filelist/tablecopy.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

namespace tablerows
{

QVector<int> selected(const QTableWidget &table, int count)
{
    QVector<int> rows;
    const QItemSelection selection = table.selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom() && row < count; ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void copy(const QTableWidget &table, const QVector<int> &rows)
{
    if (rows.isEmpty())
        return;
    QStringList header;
    for (int column = 0; column < table.columnCount(); ++column)
        header += table.horizontalHeaderItem(column)->text();
    QVector<QStringList> cells;
    for (const int row : rows) {
        QStringList line;
        for (int column = 0; column < table.columnCount(); ++column)
            line += table.item(row, column)->text();
        cells += line;
    }
    QGuiApplication::clipboard()->setText(tabSeparated(header, cells));
}

void closeUp(QTableWidget &table, const QVector<int> &removed)
{
    const int current = currentAfterRemoval(table.currentRow(), removed, table.rowCount());
    const int column = table.currentColumn();
    QAbstractItemModel *model = table.model();
    table.selectionModel()->clear();
    const auto count = static_cast<int>(removed.size());
    model->removeRows(table.rowCount() - count, count);
    if (table.rowCount() > 0)
        emit model->dataChanged(model->index(0, 0),
                                model->index(table.rowCount() - 1, table.columnCount() - 1));
    if (current >= 0)
        table.selectionModel()->setCurrentIndex(model->index(current, column), QItemSelectionModel::NoUpdate);
}

int currentAfterRemoval(int row, const QVector<int> &removed, int rowCount)
{
    const auto place = std::lower_bound(removed.cbegin(), removed.cend(), row);
    const auto removedAbove = static_cast<int>(place - removed.cbegin());
    const bool isRemoved = place != removed.cend() && *place == row;
    if (row < 0 || (isRemoved && removed.size() == rowCount))
        return -1;
    return isRemoved ? qMax(0, row - removedAbove - 1) : row - removedAbove;
}

} // namespace tablerows
