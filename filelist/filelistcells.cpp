// SPDX-License-Identifier: MIT
// What the cells of the file table show, and how wide its columns are for it.
#include "filelist/celltexts.h"
#include "filelist/filelist.h"
#include "filelist/tablecolumns.h"

#include <QEvent>
#include <QHeaderView>
#include <QStyle>
#include <QStyleOptionViewItem>

void FileList::showFileTC(int row, const QString &timecode)
{
    if (!hasRecord(row))
        return;
    if (!timecode.isEmpty())
        fileDataVector[row].setFileTC(timecode);
    const QString text = timecode.isEmpty() ? tr("file TC not found") : timecode;
    setItem(row, FileTCColumn, newItem(text, true));
    noteWidth(row, FileTCColumn, text);
    fitColumn(FileTCColumn);
}

void FileList::showDuration(int row, double seconds)
{
    if (!hasRecord(row))
        return;
    if (fileDataVector.at(row).duration != seconds) {
        leaveLink(row); // other files are its siblings now
        fileDataVector[row].duration = seconds;
        siblingLinks.setDuration(row, seconds);
    }
    setItem(row, DurationColumn, newItem(celltexts::duration(seconds), true));
}

QTableWidgetItem *FileList::newItem(const QString &text, bool centred)
{
    auto *item = new QTableWidgetItem(text, cellType);
    if (centred)
        item->setTextAlignment(Qt::AlignCenter);
    return item;
}

void FileList::showText(int row, int column, const QString &text, const QString &toolTip)
{
    QTableWidgetItem *item = newItem(text, false);
    if (!toolTip.isEmpty())
        item->setToolTip(toolTip);
    setItem(row, column, item);
    noteWidth(row, column, text);
}

void FileList::changeEvent(QEvent *event)
{
    QTableWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        headerWidths.clear();
        measureAllRows();
    }
}

void FileList::measureAllRows()
{
    leaveAllLinks({});
    measuredWidths.clear();
    for (int row = 0; row < fileDataVector.size(); ++row) {
        for (const int column : {FileTCColumn, AudioTCColumn})
            noteWidth(row, column, item(row, column)->text());
    }
}

void FileList::noteWidth(int row, int column, const QString &text)
{
    if (column == FileTCColumn || column == AudioTCColumn)
        cellWidths[column].set(row, widthOf(text));
}

/// Width of a cell that shows \a text [pixels], as its delegate asks for it.
int FileList::widthOf(const QString &text)
{
    constexpr int keptTexts = 64; // most rows show one of a few texts
    const auto known = measuredWidths.constFind(text);
    if (known != measuredWidths.constEnd())
        return *known;
    if (measuredWidths.size() >= keptTexts)
        measuredWidths.clear();
    ensurePolished();
    QStyleOptionViewItem cell = viewOptions();
    cell.widget = this;
    cell.features |= QStyleOptionViewItem::HasDisplay;
    cell.text = text;
    const int width = style()->sizeFromContents(QStyle::CT_ItemViewItem, &cell, {}, this).width();
    measuredWidths.insert(text, width);
    return width;
}

/// The same width as resizing the column to its contents gives, without a look at every cell.
void FileList::fitColumn(int column)
{
    const int gridLine = showGrid() ? 1 : 0;
    int contents = cellWidths[column].widest();
    if (column == AudioTCColumn)
        contents = qMax(contents, siblingLinks.widestLink());
    horizontalHeader()->resizeSection(column, qMax(contents + gridLine, headerWidth(column)));
}

/// Width that the title of \a column needs [pixels]. The header measures its font anew each time it is asked.
int FileList::headerWidth(int column)
{
    const auto known = headerWidths.constFind(column);
    return known != headerWidths.constEnd()
               ? *known
               : *headerWidths.insert(column, horizontalHeader()->sectionSizeHint(column));
}
