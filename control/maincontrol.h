// SPDX-License-Identifier: MIT
#pragma once

#include "control/exportbatch.h"
#include "control/jobqueues.h"
#include "control/pacedwalk.h"
#include "control/stageprogress.h"
#include "control/stagequeue.h"
#include "control/temporaryfolder.h"

#include <QJsonObject>
#include <QTimer>

#include <functional>
#include <optional>

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

    /// Runs at most \a count tools together, 1 ... JobQueues::maximumRunning, which is the default. To be
    /// called before work is asked for.
    void setJobLimit(int count) { jobs.setLimit(count); }

    /// Imports read timecodes as \a options say, instead of automatically. To be called before work is asked
    /// for.
    void setImportOptions(const AudioTCOptions &options) { importOptions = options; }

    /// Reserves the path of a new file for the export of a source; returns whether it was free.
    using NameClaim = std::function<bool(const FileData &file, const QString &path)>;

    /// Names of new files are reserved with \a claim. To be called before work is asked for.
    void setNameClaim(const NameClaim &claim) { nameClaim = claim; }
    const NameClaim &claimOfNames() const { return nameClaim; }

signals:
    void ffmpegExtractAudioStreamsReq(FileData fileData, QString targetFolderPath);

    /// A probe has ended: 0 and the filled record, or 1000 (the tool failed) or 1001 (it reported nothing)
    /// and a default record.
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

    /// A drop has arrived. It is part of every end of an import that is reported from now on.
    void dropTaken();

    /// The export of \a rowNumber into \a outputPath has ended with the tool's own code, or with
    /// toolNotStarted. The file of an export that was cancelled is gone.
    void fileExported(int rowNumber, QString outputPath, int exitCode);

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

private:
    // in maincontrol.cpp: jobs and exports
    void startOrQueue(JobQueues::Kind kind, const FileData &file);
    void startJob(JobQueues::Kind kind, const FileData &file);
    void startReaders(const FileData &file);
    void startHeldProbe();
    void finishJob(JobQueues::Kind kind, QObject *handler);
    void send(const ExportBatch::Signals &news);

    // in stages.cpp: imports and second readings
    void startStage(const StageQueue::Request &request);
    void closeStage();
    void settleStage();
    bool isImporting() const;
    void onWalkEnd();
    void endCompleteImport();
    StageProgress::Mode readingMode() const
    {
        return audioTCUpdateMode ? StageProgress::Mode::ReRead : StageProgress::Mode::Import;
    }
    void reportReading(const QString &text);
    void endReading();

    JobQueues jobs;
    TemporaryFolder temporaryFolder;
    ExportBatch batch;
    PacedWalk walk; ///< through what was dropped
    StageQueue stages;
    QTimer startPause;              ///< active while probes that were held start one by one
    uint unreadFiles = 0;           ///< files probed well whose reading was not asked for yet
    StageProgress progress;         ///< of the import or re-read
    bool audioTCUpdateMode = false; ///< timecodes are re-read with audioTCOptions, not imported
    AudioTCOptions audioTCOptions;  ///< of the re-read
    uint probeResultCount = 0;      ///< results of probes since the start
    uint extractResultCount = 0;    ///< results of extractions since the start

    std::optional<AudioTCOptions> importOptions; ///< how imports read; none = automatically
    NameClaim nameClaim;                         ///< empty = names are not reserved
};
