// SPDX-License-Identifier: MIT
#pragma once

#include "app/audiotcoptions.h"
#include "app/exportoptions.h"
#include "app/filedata.h"
#include "filelist/contentwidth.h"
#include "filelist/linking.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QTableWidget>
#include <QUrl>
#include <QVector>

#include <memory>

class MainControl;

/// The table of imported media files: one row and one record per file.
///
/// Takes drops, asks the controller by its ...Req signals to probe, read and export, and shows what comes
/// back. Lives in the window's thread. Results find their row by its number; a number without a row is
/// ignored.
class FileList : public QTableWidget
{
    Q_OBJECT

public:
    /// \a mainControl is the object that answers the requests; it is not owned.
    explicit FileList(MainControl *mainControl);

    /// Whether a second reading, asked for by onAudioTCReadReq(), is waited for. Its results carry row
    /// numbers.
    bool isReading() const;
    /// To be called when the controller has finished a second reading.
    void readingFinished();

signals:
    void iterateThroughDirReq(QList<QUrl> urls);
    void ffprobeFileReq(FileData fileData, int rowNumber);
    void initAudioTCInfoReq(FileData fileData, int rowNumber);
    void updateAudioTCInfoReq(QVector<FileData> audioTCUpdateFileVector, AudioTCOptions audioTCOptions);
    void updateFileInfo(FileData fileData);
    void exportFilesReq(QVector<FileData> exportFileVector, ExportOptions exportOptions);

    /// An import has begun with a drop (true) or has come to its end (false).
    void importBusyChanged(bool busy);

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
    void setUpTable();
    bool hasRecord(int row) const;
    QVector<int> selectedRows() const; ///< ascending
    QVector<int> chosenRows(bool all) const;
    void copySelectedRows();

    QTableWidgetItem *newItem(const QString &text, bool centred);
    void showText(int row, int column, const QString &text, const QString &toolTip = {});
    void showFileTC(int row, const QString &timecode);
    void showDuration(int row, double seconds);
    void showFailedRead(int row, int exitCode);
    void showNoTimecode(int row);
    void showTimecode(int row, const QJsonObject &result, int streamIndex);
    void linkRow(int row, int sourceRow);

    void noteWidth(int row, int column);
    void fitColumn(int column);
    void measureAllRows();

    QTableWidgetItem *placeholderItem;  ///< "Drop files here..."; null once files were dropped
    QVector<FileData> fileDataVector;   ///< one record per row, in row order
    QString lastExportDir;              ///< directory of the last export request
    QString initFileTCText;             ///< File TC of a new row
    QString initAudioTCText;            ///< Audio TC of a new row
    QString initDurationText;           ///< Duration of a new row
    bool exportRequested = false;       ///< an export was requested since the start
    bool importBusy = false;            ///< from a drop until the import has ended; rows stay meanwhile
    int readingsPending = 0;            ///< second readings asked for and not yet finished
    bool readingWaitsForImport = false; ///< the next end of an import is not that of a second reading
    MainControl *mainControl;           ///< answers the requests; not owned
    linking::Index linkIndex;           ///< siblings of a row, for tables of many thousand rows
    QMap<int, ContentWidth> cellWidths; ///< of the columns that are fitted to their contents
};
