// SPDX-License-Identifier: MIT
#include "filelist/filelist.h"

#include "filelist/filecell.h"
#include "filelist/tablecolumns.h"
#include "filelist/tablelook.h"
#include "filelist/tablerows.h"

#include <QDropEvent>
#include <QMimeData>
#include <QShortcut>

#include <utility>

FileList::FileList(MainControl *mainControl)
    : placeholderItem(new QTableWidgetItem(tr("Drop files here..."), cellType)),
      initFileTCText(tr("init file TC")),
      initAudioTCText(tr("init audio TC")),
      initDurationText(tr("00:00:00")),
      mainControl(mainControl),
      fitter(this, {FileTCColumn, AudioTCColumn})
{
    setTableLook(this);
    insertRow(0);
    setItem(0, NameColumn, placeholderItem);
    connect(this, &QTableWidget::cellClicked, this, &FileList::onCellClicked);
    const auto *copyShortcut = new QShortcut(QKeySequence::Copy, this, nullptr, nullptr, Qt::WidgetShortcut);
    connect(copyShortcut, &QShortcut::activated, this, [this] { tablerows::copy(*this, chosenRows(false)); });
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
        if (std::exchange(placeholderItem, nullptr))
            removeRow(0); // deletes it
        files.pendingWork().drop();
        showWhetherBusy();
        emit iterateThroughDirReq(urls);
    }
    event->acceptProposedAction();
}

void FileList::changeEvent(QEvent *event)
{
    QTableWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitter.measureAgain(files.count());
}

void FileList::addItemToTable(QFileInfo fileInfo)
{
    const int row = files.add(fileInfo);
    insertRow(row);
    const QStringList initTexts{{}, initDurationText, initFileTCText, initAudioTCText};
    for (int column = 0; column < ColumnCount; ++column) {
        setItem(row, column, new FileCell(files, row, column, initTexts.at(column)));
        fitter.note({row}, column);
    }
    emit ffprobeFileReq(files.record(row), row);
}

void FileList::onFFProbeResult(FileData fileData, int fileNumber, int exitCode)
{
    showChanges(files.takeProbe(fileData, fileNumber, exitCode));
    if (exitCode == 0 && files.contains(fileNumber))
        emit initAudioTCInfoReq(files.record(fileNumber), fileNumber);
}

void FileList::onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex,
                                   int exitCode)
{
    showChanges(files.takeReading(ltcResultJson, fileNumber, audioTCStreamIndex, exitCode));
}

void FileList::onCellClicked(int row)
{
    if (files.contains(row))
        emit updateFileInfo(files.record(row));
}

void FileList::onAudioTCReadReq(AudioTCOptions audioTCOptions)
{
    const QVector<FileData> taken = files.takeForReading(chosenRows(audioTCOptions.allFiles));
    showWhetherBusy();
    emit updateAudioTCInfoReq(taken, audioTCOptions);
}

void FileList::exportFiles(ExportOptions exportOptions)
{
    exportRequested = true;
    lastExportDir = exportOptions.exportDir;
    emit exportFilesReq(files.takeForExport(chosenRows(exportOptions.exportAll), exportOptions),
                        exportOptions);
}

void FileList::deleteSelectedRows()
{
    const QVector<int> rows = chosenRows(false);
    if (!files.remove(rows))
        return;
    fitter.remove(rows, rowCount());
    tablerows::closeUp(*this, rows);
}

void FileList::importReady()
{
    files.pendingWork().endImport();
    showWhetherBusy();
}

void FileList::readingFinished()
{
    files.pendingWork().endReading();
    showWhetherBusy();
}

QVector<int> FileList::chosenRows(bool all) const
{
    return all ? files.allRows() : tablerows::selected(*this, files.count());
}

void FileList::showChanges(const ImportedFiles::Changes &changes)
{
    if (changes.fileTC)
        showCells({changes.row}, FileTCColumn, true);
    if (changes.duration)
        showCells({changes.row}, DurationColumn, false);
    if (changes.audioTC)
        showCells({changes.row}, AudioTCColumn, files.status(changes.row).isAnswered());
    if (!changes.linkedRows.isEmpty())
        showCells(changes.linkedRows, AudioTCColumn, false);
}

/// Has the cells of \a rows, ascending, painted again. They all show the same text.
void FileList::showCells(const QVector<int> &rows, int column, bool fitColumn)
{
    fitter.note(rows, column);
    if (fitColumn)
        fitter.fit(column);
    emit model()->dataChanged(model()->index(rows.first(), column), model()->index(rows.last(), column));
}

/// The pointer shows that work has begun, and that it has ended, also when no text does.
void FileList::showWhetherBusy()
{
    if (files.pendingWork().isBusy())
        setCursor(Qt::BusyCursor); // for the viewport too, which has no pointer of its own
    else
        unsetCursor();
}
