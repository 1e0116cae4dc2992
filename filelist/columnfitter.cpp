// SPDX-License-Identifier: MIT
#include "filelist/columnfitter.h"

#include <QHeaderView>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableWidget>

ColumnFitter::ColumnFitter(QTableWidget *table, const QVector<int> &columns) : table(table)
{
    for (const int column : columns)
        cellWidths.insert(column, {});
}

void ColumnFitter::note(const QVector<int> &rows, int column)
{
    const auto widths = cellWidths.find(column);
    if (widths == cellWidths.end())
        return;
    const int width = widthOf(table->item(rows.first(), column)->text());
    for (const int row : rows)
        widths->set(row, width);
}

void ColumnFitter::fit(int column)
{
    const int gridLine = table->showGrid() ? 1 : 0;
    table->horizontalHeader()->resizeSection(
        column, qMax(cellWidths[column].widest() + gridLine, headerWidth(column)));
}

void ColumnFitter::remove(const QVector<int> &rows, int rowCount)
{
    for (ContentWidth &widths : cellWidths) {
        int kept = rows.first();
        auto next = rows.cbegin();
        for (int row = kept; row < rowCount; ++row) {
            if (next != rows.cend() && *next == row)
                ++next;
            else
                widths.move(row, kept++);
        }
        widths.remove(kept, rowCount - kept);
    }
}

void ColumnFitter::measureAgain(int rowCount)
{
    headerWidths.clear();
    measuredWidths.clear();
    for (auto widths = cellWidths.begin(); widths != cellWidths.end(); ++widths) {
        for (int row = 0; row < rowCount; ++row)
            widths->set(row, widthOf(table->item(row, widths.key())->text()));
    }
}

/// Width of a cell that shows \a text [pixels], as its delegate asks for it.
int ColumnFitter::widthOf(const QString &text)
{
    constexpr int keptTexts = 64; // most rows show one of a few texts
    const auto known = measuredWidths.constFind(text);
    if (known != measuredWidths.constEnd())
        return *known;
    if (measuredWidths.size() >= keptTexts)
        measuredWidths.clear();
    table->ensurePolished();
    QStyleOptionViewItem cell;
    cell.initFrom(table);
    cell.font = table->font();
    cell.widget = table;
    cell.features |= QStyleOptionViewItem::HasDisplay;
    cell.text = text;
    const int width = table->style()->sizeFromContents(QStyle::CT_ItemViewItem, &cell, {}, table).width();
    measuredWidths.insert(text, width);
    return width;
}

/// Width that the title of \a column needs [pixels]. The header measures its font every time.
int ColumnFitter::headerWidth(int column)
{
    const auto known = headerWidths.constFind(column);
    return known != headerWidths.constEnd()
               ? *known
               : *headerWidths.insert(column, table->horizontalHeader()->sectionSizeHint(column));
}
