// SPDX-License-Identifier: MIT
#pragma once

#include "batch/openrows.h"
#include "filelist/importedfiles.h"

#include <QJsonArray>
#include <QObject>
#include <QStringList>
#include <QUrl>

class MainControl;

/// One run without a window: has the controller import files, as the table of the window does, and knows when
/// a file is done.
///
/// Lives in the controller's thread; all calls between the two are queued, as they are between two threads.
class BatchRun : public QObject
{
    Q_OBJECT

public:
    /// \a control answers the requests; it is not owned.
    explicit BatchRun(MainControl *control);

    /// Begins with \a paths, files and folders. ended() follows in any case.
    void start(const QStringList &paths);

    /// Ends the run now: no tool goes on, and what is not done stays so. ended() comes inside this call,
    /// unless it has come before.
    void stop();

    const ImportedFiles &importedFiles() const { return files; }

    /// What the reports say of all files, in the order of their paths.
    QJsonArray records() const;

    /// Whether a file has failed.
    bool hasFailures() const;

signals:
    void iterateThroughDirReq(QList<QUrl> urls);
    void ffprobeFileReq(FileData fileData, int rowNumber);
    void initAudioTCInfoReq(FileData fileData, int rowNumber);

    /// No further result will change \a row; all rows are known by the first time.
    void rowDone(int row);
    void progressed(QString what, int done, int total);
    void ended();

private slots:
    void addFile(QFileInfo fileInfo);
    void onFFProbeResult(FileData fileData, int fileNumber, int exitCode);
    void onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex, int exitCode);
    void onImportProgress(int current, int total);
    void onImportEnd();

private:
    void report(const QVector<int> &rows);

    MainControl *control;
    ImportedFiles files; ///< one record per row, in row order
    OpenRows open;
    bool isRunning = false;
};
