// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "filelist/columnfitter.h"
#include "filelist/importedfiles.h"

#include <QTableWidget>
#include <QUrl>

class MainControl;

/// The table of imported media files: shows the ImportedFiles and sends their requests to the controller.
///
/// Takes drops, asks the controller by its ...Req signals to probe, read and export, and shows what comes
/// back. Lives in the window's thread.
class FileList : public QTableWidget
{
    Q_OBJECT

public:
    /// \a mainControl is the object that answers the requests; it is not owned.
    explicit FileList(MainControl *mainControl);

    /// What is still to come from the controller. The table shows the busy pointer meanwhile.
    const PendingWork &pendingWork() const { return files.pendingWork(); }

    /// To be called when the controller has taken a drop; ends of imports that come later include it.
    void dropTaken() { files.pendingWork().takeDrop(); }
    /// To be called when the controller has finished a second reading.
    void readingFinished();

signals:
    void iterateThroughDirReq(QList<QUrl> urls);
    void ffprobeFileReq(FileData fileData, int rowNumber);
    void initAudioTCInfoReq(FileData fileData, int rowNumber);
    void updateAudioTCInfoReq(QVector<FileData> audioTCUpdateFileVector, AudioTCOptions audioTCOptions);
    void updateFileInfo(FileData fileData);
    void exportFilesReq(QVector<FileData> exportFileVector, ExportOptions exportOptions);

private slots:
    void onCellClicked(int row);

public slots:
    /// Appends a row for a file that the controller found, and asks for its probe.
    void addItemToTable(QFileInfo fileInfo);
    /// Shows the probe's result for row \a fileNumber; \a exitCode 0 asks for its audio timecode.
    void onFFProbeResult(FileData fileData, int fileNumber, int exitCode);
    /// Shows the reader's result for row \a fileNumber, found in stream \a audioTCStreamIndex.
    void onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex, int exitCode);
    void onAudioTCReadReq(AudioTCOptions audioTCOptions);
    /// Removes the selected rows; refused while an import runs.
    void deleteSelectedRows();
    void exportFiles(ExportOptions exportOptions);
    void importReady();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QVector<int> chosenRows(bool all) const;
    void showChanges(const ImportedFiles::Changes &changes);
    void showCells(const QVector<int> &rows, int column, bool fitColumn);
    void showWhetherBusy();

    QTableWidgetItem *placeholderItem; ///< "Drop files here..."; null once files were dropped
    ImportedFiles files;               ///< one record per row, in row order
    QString lastExportDir;             ///< directory of the last export request
    QString initFileTCText;            ///< File TC of a new row
    QString initAudioTCText;           ///< Audio TC of a new row
    QString initDurationText;          ///< Duration of a new row
    bool exportRequested = false;      ///< an export was requested since the start
    MainControl *mainControl;          ///< answers the requests; not owned
    ColumnFitter fitter;
};
