// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "filelist/contentwidth.h"
#include "filelist/siblinglinks.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonObject>
#include <QMap>
#include <QTableWidget>
#include <QTimer>
#include <QUrl>
#include <QVector>

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

    /// Whether an import or a second reading is under way. The table shows the busy pointer meanwhile.
    bool isBusy() const;

    /// Whether a second reading, asked for by onAudioTCReadReq(), is waited for. Its results carry row
    /// numbers.
    bool isReading() const;

    /// Whether the rows must stay although deleteSelectedRows() would not refuse: results that carry row
    /// numbers are still to come, of a second reading, or of an import whose drop crossed the end of an
    /// earlier one.
    bool mustKeepRows() const;
    /// To be called when the controller has taken a drop; ends of imports that come later include it.
    void dropTaken();

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
    // in filelist.cpp
    void setUpTable();
    void showWhetherBusy();
    bool hasRecord(int row) const;

    // in filelistrows.cpp
    QVector<int> selectedRows() const; ///< ascending
    QVector<int> chosenRows(bool all) const;
    void copySelectedRows();
    void removeRows(const QVector<int> &rows);
    int currentRowWithout(const QVector<int> &rows) const;
    void moveRow(int from, int to);

    // in filelistcells.cpp
    QTableWidgetItem *newItem(const QString &text, bool centred);
    void showText(int row, int column, const QString &text, const QString &toolTip = {});
    void showFileTC(int row, const QString &timecode);
    void showDuration(int row, double seconds);
    void noteWidth(int row, int column, const QString &text);
    int widthOf(const QString &text);
    void fitColumn(int column);
    int headerWidth(int column);
    void measureAllRows();

    // in filelisttimecode.cpp
    FileData &currentRecord(int row);
    void setHasAudioTC(int row, bool hasAudioTC);
    void showOwnAudioTC(int row, const QString &text, const QString &toolTip = {});
    void showFailedRead(int row, int exitCode);
    void showNoTimecode(int row);
    void showTimecode(int row, const QJsonObject &result, int streamIndex);
    void linkRow(int row, int sourceRow);
    void linkSiblings(int sourceRow);
    void announceLinkedCells();
    void leaveLink(int row);
    void leaveAllLinks(const QVector<int> &gone);

    QTableWidgetItem *placeholderItem;  ///< "Drop files here..."; null once files were dropped
    QVector<FileData> fileDataVector;   ///< one record per row, in row order; see currentRecord()
    QString lastExportDir;              ///< directory of the last export request
    QString initFileTCText;             ///< File TC of a new row
    QString initAudioTCText;            ///< Audio TC of a new row
    QString initDurationText;           ///< Duration of a new row
    bool exportRequested = false;       ///< an export was requested since the start
    bool importBusy = false;            ///< from a drop until the import has ended; rows stay meanwhile
    bool importUnderWay = false;        ///< from a drop until the end of the import that it belongs to
    int dropsOnTheWay = 0;              ///< drops that the controller has not taken yet
    int readingsPending = 0;            ///< second readings asked for and not yet finished
    bool readingWaitsForImport = false; ///< the next end of an import is not that of a second reading
    MainControl *mainControl;           ///< answers the requests; not owned
    SiblingLinks siblingLinks;          ///< who has taken over whose timecode
    QTimer linkedCellsTimer;            ///< until the cells that follow a link are painted anew
    QMap<int, ContentWidth> cellWidths; ///< of the columns that are fitted to their contents
    QHash<QString, int> measuredWidths; ///< [pixels] of cells, by their text
    QHash<int, int> headerWidths;       ///< [pixels] of the titles of columns
};
