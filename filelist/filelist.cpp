// SPDX-License-Identifier: MIT
#include "filelist/filelist.h"

#include "filelist/celltexts.h"
#include "filelist/tablecolumns.h"
#include "filelist/tablecopy.h"
#include "ltc/readererrors.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMimeData>
#include <QShortcut>

#include <algorithm>
#include <numeric>

FileList::FileList(MainControl *mainControl)
    : placeholderItem(newItem(tr("Drop files here..."), false)),
      initFileTCText(tr("init file TC")),
      initAudioTCText(tr("init audio TC")),
      initDurationText(tr("00:00:00")),
      mainControl(mainControl)
{
    constexpr int expectedFiles = 20;
    fileDataVector.reserve(expectedFiles);
    setUpTable();
    insertRow(0);
    setItem(0, NameColumn, placeholderItem);

    connect(this, &QTableWidget::cellClicked, this, &FileList::onCellClicked);
    const auto *copyShortcut = new QShortcut(QKeySequence::Copy, this, nullptr, nullptr, Qt::WidgetShortcut);
    connect(copyShortcut, &QShortcut::activated, this, &FileList::copySelectedRows);
}

void FileList::setUpTable()
{
    setDragDropMode(QAbstractItemView::DropOnly);
    setDropIndicatorShown(true);

    setColumnCount(ColumnCount);
    setHorizontalHeaderLabels({tr("File name"), tr("Duration"), tr("File TC"), tr("Audio TC")});
    // The sections are light grey under every desktop theme, so their text is dark under every theme.
    for (int column = 0; column < ColumnCount; ++column)
        horizontalHeaderItem(column)->setForeground(Qt::black);
    verticalHeader()->setVisible(false);
    QHeaderView *header = horizontalHeader();
    header->setStyleSheet("QHeaderView::section{background-color: lightgrey;border:none;font:normal;}"
                          "QHeaderView::section:checked{font: normal;}");
    header->setHighlightSections(false);
    header->setSectionResizeMode(NameColumn, QHeaderView::Stretch);

    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setStyleSheet("QTableView{selection-background-color: #f2ff4900;selection-color: white; "
                  "show-decoration-selected: 10}\n");
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    constexpr int audioTCWidth = 300; // [pixels]
    setColumnWidth(AudioTCColumn, audioTCWidth);

    setTextElideMode(Qt::ElideMiddle);
    setWordWrap(false);
    setTabKeyNavigation(false); // Tab leads on to the next widget, the arrow keys move in the table
}

void FileList::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
    else
        QTableWidget::dragEnterEvent(event);
}

void FileList::dragMoveEvent(QDragMoveEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
    else
        QTableWidget::dragMoveEvent(event);
}

void FileList::dropEvent(QDropEvent *event)
{
    if (!event->mimeData()->hasUrls()) {
        QTableWidget::dropEvent(event);
        return;
    }
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty()) {
        if (placeholderItem) {
            delete placeholderItem;
            placeholderItem = nullptr;
            removeRow(0);
        }
        importBusy = true;
        emit importBusyChanged(true);
        emit iterateThroughDirReq(urls);
    }
    event->acceptProposedAction();
}

void FileList::addItemToTable(QFileInfo fileInfo)
{
    FileData record;
    record.fileName = fileInfo.fileName();
    record.absoluteFilePath = fileInfo.absoluteFilePath();
    record.baseName = fileInfo.baseName();
    record.lastModified = fileInfo.lastModified();
    record.suffix = fileInfo.suffix();

    const int row = rowCount();
    insertRow(row);
    showText(row, NameColumn, record.fileName, record.absoluteFilePath);
    setItem(row, DurationColumn, newItem(initDurationText, true));
    showText(row, FileTCColumn, initFileTCText);
    showText(row, AudioTCColumn, initAudioTCText);

    fileDataVector.append(record);
    linkIndex.add(row, record);
    emit ffprobeFileReq(record, row);
}

void FileList::onFFProbeResult(FileData fileData, int fileNumber, int exitCode)
{
    if (!hasRecord(fileNumber))
        return;
    showFileTC(fileNumber, fileData.fileTC);
    if (exitCode != 0) {
        showText(fileNumber, AudioTCColumn, readerErrorText(exitCode));
        return;
    }
    showDuration(fileNumber, fileData.duration);
    FileData &record = fileDataVector[fileNumber];
    record.format = fileData.format;
    record.audioStreams = fileData.audioStreams;
    record.streams = fileData.streams;
    record.isGoPro = fileData.isGoPro;
    record.audioStreamMap = fileData.audioStreamMap;
    record.mainStream = fileData.mainStream;
    record.audioChannelCount = fileData.audioChannelCount;
    record.timeReference = fileData.timeReference;
    emit initAudioTCInfoReq(record, fileNumber);
}

void FileList::showFileTC(int row, const QString &timecode)
{
    if (!hasRecord(row))
        return;
    if (!timecode.isEmpty())
        fileDataVector[row].setFileTC(timecode);
    setItem(row, FileTCColumn, newItem(timecode.isEmpty() ? tr("file TC not found") : timecode, true));
    noteWidth(row, FileTCColumn);
    fitColumn(FileTCColumn);
}

void FileList::showDuration(int row, double seconds)
{
    if (!hasRecord(row))
        return;
    fileDataVector[row].duration = seconds;
    setItem(row, DurationColumn, newItem(celltexts::duration(seconds), true));
}

void FileList::onCellClicked(int row)
{
    if (!placeholderItem && hasRecord(row))
        emit updateFileInfo(fileDataVector.at(row));
}

void FileList::onAudioTCReadReq(AudioTCOptions audioTCOptions)
{
    QVector<FileData> files;
    files.reserve(rowCount());
    for (const int row : chosenRows(audioTCOptions.allFiles)) {
        FileData &record = fileDataVector[row];
        record.rowNumber = row;
        record.audioTCPending = true;
        files.append(record);
    }
    if (!files.isEmpty()) {
        ++readingsPending;
        readingWaitsForImport = importBusy;
    }
    emit updateAudioTCInfoReq(files, audioTCOptions);
}

void FileList::exportFiles(ExportOptions exportOptions)
{
    exportRequested = true;
    lastExportDir = exportOptions.exportDir;
    QVector<FileData> files;
    files.reserve(rowCount());
    for (const int row : chosenRows(exportOptions.exportAll)) {
        FileData &record = fileDataVector[row];
        record.rowNumber = row;
        // A sound file that holds nothing but the timecode would come out empty.
        const bool onlyTimecode = linking::isWave(record) && record.hasAudioTC && !record.audioTCLinked &&
                                  record.audioChannelCount < 2;
        if (!exportOptions.muteAudioTC || !onlyTimecode)
            files.append(record);
    }
    emit exportFilesReq(files, exportOptions);
}

void FileList::deleteSelectedRows()
{
    if (importBusy)
        return;
    const QVector<int> rows = selectedRows();
    // From the bottom up the rows still to be removed keep their numbers; neighbours go in one step.
    for (int last = rows.size() - 1; last >= 0;) {
        int first = last;
        while (first > 0 && rows.at(first - 1) == rows.at(first) - 1)
            --first;
        const int count = last - first + 1;
        model()->removeRows(rows.at(first), count);
        fileDataVector.remove(rows.at(first), count);
        for (ContentWidth &widths : cellWidths)
            widths.remove(rows.at(first), count);
        last = first - 1;
    }
    if (!rows.isEmpty())
        linkIndex.rebuild(fileDataVector);
}

void FileList::importReady()
{
    // A reading whose last file failed ends like an import; an import that was there first ends before it.
    if (readingWaitsForImport)
        readingWaitsForImport = false;
    else
        readingFinished();
    importBusy = false;
    emit importBusyChanged(false);
}

bool FileList::isReading() const
{
    return readingsPending > 0;
}

void FileList::readingFinished()
{
    readingsPending = qMax(0, readingsPending - 1);
}

bool FileList::hasRecord(int row) const
{
    return row >= 0 && row < fileDataVector.size();
}

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
    for (const int row : selectedRows()) {
        QStringList line;
        for (int column = 0; column < ColumnCount; ++column)
            line += item(row, column)->text();
        cells += line;
    }
    if (!cells.isEmpty())
        QGuiApplication::clipboard()->setText(tabSeparated(header, cells));
}

QTableWidgetItem *FileList::newItem(const QString &text, bool centred)
{
    constexpr int itemType = 1;
    auto *item = new QTableWidgetItem(text, itemType);
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
    noteWidth(row, column);
}

void FileList::changeEvent(QEvent *event)
{
    QTableWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        measureAllRows();
}

void FileList::measureAllRows()
{
    for (ContentWidth &widths : cellWidths)
        widths.clear();
    for (int row = 0; row < fileDataVector.size(); ++row) {
        noteWidth(row, FileTCColumn);
        noteWidth(row, AudioTCColumn);
    }
}

void FileList::noteWidth(int row, int column)
{
    if (column == FileTCColumn || column == AudioTCColumn) {
        ensurePolished();
        cellWidths[column].set(row, sizeHintForIndex(model()->index(row, column)).width());
    }
}

/// The same width as resizing the column to its contents gives, without a look at every cell.
void FileList::fitColumn(int column)
{
    const int gridLine = showGrid() ? 1 : 0;
    const int contents = cellWidths[column].widest() + gridLine;
    horizontalHeader()->resizeSection(column, qMax(contents, horizontalHeader()->sectionSizeHint(column)));
}
