// SPDX-License-Identifier: MIT
#include "filelist/filelist.h"

#include "filelist/linking.h"
#include "filelist/tablecolumns.h"
#include "ltc/readererrors.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QShortcut>

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

    constexpr int paintingPause = 40; // [ms]
    linkedCellsTimer.setSingleShot(true);
    linkedCellsTimer.setInterval(paintingPause);
    connect(&linkedCellsTimer, &QTimer::timeout, this, &FileList::announceLinkedCells);
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
        importUnderWay = true;
        ++dropsOnTheWay;
        showWhetherBusy();
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
    siblingLinks.append(record);
    emit ffprobeFileReq(record, row);
}

void FileList::onFFProbeResult(FileData fileData, int fileNumber, int exitCode)
{
    if (!hasRecord(fileNumber))
        return;
    showFileTC(fileNumber, fileData.fileTC);
    if (exitCode != 0) {
        showOwnAudioTC(fileNumber, readerErrorText(exitCode));
        return;
    }
    showDuration(fileNumber, fileData.duration);
    FileData &record = currentRecord(fileNumber);
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

void FileList::onCellClicked(int row)
{
    if (!placeholderItem && hasRecord(row))
        emit updateFileInfo(currentRecord(row));
}

void FileList::onAudioTCReadReq(AudioTCOptions audioTCOptions)
{
    QVector<FileData> files;
    files.reserve(rowCount());
    const QVector<int> rows = chosenRows(audioTCOptions.allFiles);
    for (const int row : rows) {
        FileData &record = currentRecord(row);
        record.rowNumber = row;
        record.audioTCPending = true;
        files.append(record);
    }
    if (!files.isEmpty()) {
        ++readingsPending;
        readingWaitsForImport = importBusy;
        showWhetherBusy();
    }
    emit updateAudioTCInfoReq(files, audioTCOptions);
}

void FileList::exportFiles(ExportOptions exportOptions)
{
    exportRequested = true;
    lastExportDir = exportOptions.exportDir;
    QVector<FileData> files;
    files.reserve(rowCount());
    const QVector<int> rows = chosenRows(exportOptions.exportAll);
    for (const int row : rows) {
        FileData &record = currentRecord(row);
        record.rowNumber = row;
        // A sound file that holds nothing but the timecode would come out empty.
        const bool onlyTimecode = linking::isWave(record) && record.hasAudioTC && !record.audioTCLinked &&
                                  record.audioChannelCount < 2;
        if (!exportOptions.muteAudioTC || !onlyTimecode)
            files.append(record);
    }
    emit exportFilesReq(files, exportOptions);
}

void FileList::importReady()
{
    // A reading whose last file failed ends like an import; an import that was there first ends before it.
    const bool endsReading = isReading() && !readingWaitsForImport;
    readingWaitsForImport = false;
    if (endsReading)
        readingFinished();
    else if (dropsOnTheWay == 0) // otherwise it is the end of an earlier import
        importUnderWay = false;
    importBusy = false;
    showWhetherBusy();
}

bool FileList::isBusy() const
{
    return importUnderWay || isReading();
}

/// The pointer shows that work has begun, and that it has ended, also when no text does.
void FileList::showWhetherBusy()
{
    if (isBusy())
        setCursor(Qt::BusyCursor); // for the viewport too, which has no pointer of its own
    else
        unsetCursor();
}

bool FileList::isReading() const
{
    return readingsPending > 0;
}

bool FileList::mustKeepRows() const
{
    return isReading() || (importUnderWay && !importBusy);
}

void FileList::dropTaken()
{
    dropsOnTheWay = qMax(0, dropsOnTheWay - 1);
}

void FileList::readingFinished()
{
    readingsPending = qMax(0, readingsPending - 1);
    showWhetherBusy();
}

bool FileList::hasRecord(int row) const
{
    return row >= 0 && row < fileDataVector.size();
}
