// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QString>

#include <functional>

/// Runs one job of the media tools - a probe, an audio extraction or an export - and reports its result once.
///
/// Lives in the controller's thread, as a child of the controller, which deletes it with deleteLater() once
/// it has the result. Of couldNotStart() and the job's result signal exactly one comes, unless the handler is
/// deleted first; failures of the tool are its exit code. Destroying a handler kills a tool that still runs.
class FFMpegHandler : public QObject
{
    Q_OBJECT

public:
    explicit FFMpegHandler(QObject *parent);

    /// Starts the probe tool on \a mediaPath; \a fileNumber comes back with the result. A tool that prints
    /// more than 64 MiB is killed; the result is then an empty object with the exit code 0.
    void probe(const QString &mediaPath, uint fileNumber);

    /// Starts writing the first seconds of each audio stream of \a fileData to WAV files in the existing
    /// folder \a targetFolderPath.
    void extractAudio(const FileData &fileData, const QString &targetFolderPath);

    /// Starts the export of \a fileData into exportOptions.exportDir. The output gets a name that no file has
    /// and that no other running export of the same parent writes.
    void buildExportArguments(const FileData &fileData, const ExportOptions &exportOptions);

    /// Lets the export know that it is one of \a files that run together. Call it before the export starts.
    void setBatchSize(int files) { batchSize = files; }

    /// Names of outputs are asked for with \a claim, which reserves a path and returns whether it was free.
    /// Call it before the export starts; without it no name is reserved.
    void setNameClaim(const std::function<bool(const QString &path)> &claim) { nameClaim = claim; }

    /// The file that the export writes; empty before buildExportArguments().
    QString outputFilePath() const { return outputPath; }

    /// The record that is being worked on; a default one for a probe.
    FileData fileData() const { return record; }

signals:
    void ffprobeResult(FFMpegHandler *handler, QJsonObject ffprobeJson, uint fileNumber, int exitCode);
    void ffmpegAudioExtractResult(FFMpegHandler *handler, FileData fileData, int exitCode);
    void ffmpegExportResult(FFMpegHandler *handler, int exitCode);
    void ffmpegExportProgress(uint addedValueToProgress);

    /// The job's tool is missing or cannot be started; no result will come. Never sent from inside the call
    /// that starts the job.
    void couldNotStart(FFMpegHandler *handler);

private slots:
    void ffprobeReady();
    void ffprobeFinished(int exitCode);
    void ffmpegAudioExtractFinished(int exitCode);
    void ffmpegExportError();
    void ffmpegExportFinished(int exitCode);

public slots:
    /// Kills the running export at once; its result follows, then the handler deletes itself. A handler whose
    /// run has ended just deletes itself.
    void onExportCancel();

private:
    void start(QProcess *process, const QString &program, const QStringList &arguments);
    void reportFailedStart(QProcess::ProcessError error);
    bool isTaken(const QString &path) const;
    bool isTakenByHandler(const QString &path) const;
    bool isWriting(const QString &path) const;

    QByteArray probeOutput;        ///< what the probe tool has printed so far
    QString outputPath;            ///< the file that the export writes
    FileData record;               ///< the file being worked on
    uint fileNumber = 0;           ///< the caller's number of the file being probed
    uint progressStepsDone = 0;    ///< progress steps reported so far, 0 ... options.progressSteps
    ExportOptions options;         ///< of the export
    int batchSize = 0;             ///< exports that run together; 0 = not known
    qint64 inputFileSize = 0;      ///< [bytes]
    qint64 expectedOutputSize = 0; ///< [bytes per progress step]
    QProcess *exportProcess;       ///< child of this handler
    QProcess *probeProcess;        ///< child of this handler
    QProcess *extractProcess;      ///< child of this handler
    std::function<bool(const QString &)> nameClaim; ///< empty = names are not reserved
    QString ffprobePath = "ffprobe.exe"; ///< name of the tool; where it is, is looked up at its start
    QString ffmpegPath = "ffmpeg.exe";   ///< name of the tool; where it is, is looked up at its start
};
