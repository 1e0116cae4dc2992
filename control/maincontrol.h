// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "control/droppedfiles.h"
#include "control/jobqueues.h"
#include "control/stageprogress.h"
#include "control/temporaryfolder.h"

#include <QBasicTimer>
#include <QFileInfo>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVector>

#include <variant>

class FFMpegHandler;
class LTCHandler;

/// Drives all work on media files: finds them, probes them, reads their audio timecode and exports them.
///
/// Lives in the worker thread and is called through queued signals only; every argument is a value. It makes
/// one handler per child process, at most 45 at a time, and deletes it once it has reported. Failures come
/// back as codes in the result signals.
class MainControl : public QObject
{
    Q_OBJECT

public:
    explicit MainControl(QObject *parent = nullptr);
    ~MainControl() override;

signals:
    void ffmpegExtractAudioStreamsReq(FileData fileData, QString targetFolderPath);

    /// A probe has ended: 0 and the filled record, or 1000 (the tool failed) or 1001 (it told nothing) and a
    /// default record.
    void ffprobeResult(FileData fileData, int fileNumber, int exitCode);

    /// A reader has ended (its own exit code and object), or an extraction has failed (2001, stream -1).
    void audioTCReadResult(QJsonObject ltcResultJson, int fileIndex, int audioTCStreamIndex, int exitCode);

    void gotFileFromDir(QFileInfo fileInfo);
    void exportProgress(int current, int total, QString statusMsg);
    void importProgress(int current, int total, QString statusMsg);
    void importReady();
    void readingFinished();

    /// A batch has ended: 0 = all exported, 1 = cancelled, 2 = the files of the list failed.
    void exportReady(int exportResult, QStringList exportErrorFileNameList);

    void exportStarted();
    void cancelExportReq();

    /// An import or a re-read has come to its end without reaching its total: nothing of it runs or waits.
    void importIdle();

    /// A drop has arrived. It is part of every end of an import that is told from now on.
    void dropTaken();

public slots:
    void onFFProbeReady(FFMpegHandler *handler, QJsonObject ffprobeJson, uint fileNumber, int exitCode);
    void onAudioExtractReady(FFMpegHandler *handler, FileData fileData, int errorCode);
    void onLTCReaderReady(LTCHandler *handler, QJsonObject ltcResultJson, QString filePath, int exitCode);
    void onExportProgress(uint addedValueToProgress);
    void onExportReady(FFMpegHandler *handler, int exitCode);
    void onFFProbeFile(FileData fileData, int fileNumber);
    void onIterateThroughDir(QList<QUrl> urls);
    void onInitAudioTCInfo(FileData fileData, int fileIndex);
    void onUpdateAudioTCInfo(QVector<FileData> audioTCUpdateFileVector, AudioTCOptions audioTCOptions);
    void onExportReq(QVector<FileData> exportFileVector, ExportOptions exportOptions);
    void onExportCancel();

    /// Gives up all work: kills the child processes, forgets what waits and removes the temporary folder.
    /// Connected to finished() of the controller's thread, which runs it there as the last thing.
    void shutDown();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    /// The operation that the import counters and the temporary folder belong to.
    enum class Stage { None, Import, ReRead };

    struct ReReadRequest {
        QVector<FileData> files;
        AudioTCOptions options;
    };
    using StageRequest = std::variant<QList<QUrl>, ReReadRequest>;

    // in maincontrol.cpp
    void finishJob(JobQueues::Kind kind, QObject *handler);
    bool serveQueues();
    void startQueued(JobQueues::Kind kind, const FileData &file);
    void requestStage(const StageRequest &request);
    bool mayBegin(const StageRequest &request) const;
    void startStage(const StageRequest &request);
    void closeStage();
    void settleStage();
    bool isImporting() const;

    // in importflow.cpp
    void startImport(const QList<QUrl> &urls);
    void walkOn();
    void startHeldProbe();
    void startProbe(const FileData &file);
    void endCompleteImport();

    // in readflow.cpp
    void startReRead(const ReReadRequest &request);
    void startOrQueueExtraction(const FileData &file);
    void startExtraction(const FileData &file);
    void startOrQueueReaders(const FileData &file);
    void startReaders(const FileData &file);
    void startReader(const QString &path, bool isGoPro);
    StageProgress::Mode readingMode() const;
    void reportReading(const QString &text);
    bool isReadingComplete() const;
    void endReading();

    // in exportflow.cpp
    void startExport(const FileData &file);
    void failExport(FFMpegHandler *handler);
    void dropQueuedExports();
    void reportExport();
    void reportFinishedFiles();
    void endCancelledBatch();
    void resetExportCounters();

    JobQueues jobs;
    TemporaryFolder temporaryFolder;

    Stage stage = Stage::None;
    QQueue<StageRequest> waitingStages; ///< wait for the end of the stage under way
    DroppedFiles walk;                  ///< through what was dropped; at its end = none is under way
    QBasicTimer walkPause;              ///< active while the walk waits for the file table
    QBasicTimer startPause;             ///< active while probes that were held start one by one
    uint unaskedFiles = 0;              ///< files found by a drop for which no probe was asked yet
    uint unreadFiles = 0;               ///< files probed well whose reading was not asked for yet
    StageProgress progress;             ///< of the import or re-read
    bool audioTCUpdateMode = false;     ///< timecodes are re-read with audioTCOptions, not imported
    AudioTCOptions audioTCOptions;      ///< of the re-read
    ExportOptions exportOptions;        ///< of the export
    QString statusMsg;                  ///< goes with every export progress
    uint exportFileCount = 0;           ///< files of the batch
    uint exportFinishedCount = 0;       ///< exported, failed or dropped by cancelling
    uint exportProgressValue = 0;       ///< progress units reported by the handlers
    bool exportCancelRequested = false; ///< until the next batch
    bool exportAllSucceeded = true;     ///< no file of the batch has failed
    QStringList exportErrorFileNames;   ///< names of the files that have failed
};
