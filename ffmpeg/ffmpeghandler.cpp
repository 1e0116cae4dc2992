// SPDX-License-Identifier: MIT
#include "ffmpeg/ffmpeghandler.h"

#include "app/toolprocess.h"
#include "app/toolresolver.h"
#include "ffmpeg/toolarguments.h"

#include <QJsonDocument>

FFMpegHandler::FFMpegHandler(QObject *parent)
    : QObject(parent),
      exportProcess(new ToolProcess(this)),
      probeProcess(new ToolProcess(this)),
      extractProcess(new ToolProcess(this))
{
}

void FFMpegHandler::probe(const QString &mediaPath, uint number)
{
    fileNumber = number;
    connect(probeProcess, &QProcess::readyReadStandardOutput, this, &FFMpegHandler::ffprobeReady);
    connect(probeProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &FFMpegHandler::ffprobeFinished);
    start(probeProcess, ffprobePath, toolarguments::probe(mediaPath));
}

void FFMpegHandler::ffprobeReady()
{
    probeOutput += probeProcess->readAllStandardOutput();
}

void FFMpegHandler::ffprobeFinished(int exitCode)
{
    emit ffprobeResult(this, QJsonDocument::fromJson(probeOutput).object(), fileNumber, exitCode);
    probeOutput.clear();
}

void FFMpegHandler::extractAudio(const FileData &fileData, const QString &targetFolderPath)
{
    record = fileData;
    connect(extractProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &FFMpegHandler::ffmpegAudioExtractFinished);
    start(extractProcess, ffmpegPath, toolarguments::audioExtraction(record, targetFolderPath));
}

void FFMpegHandler::ffmpegAudioExtractFinished(int exitCode)
{
    emit ffmpegAudioExtractResult(this, record, exitCode);
}

void FFMpegHandler::buildExportArguments(const FileData &fileData, const ExportOptions &exportOptions)
{
    record = fileData;
    options = exportOptions;
    connect(exportProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &FFMpegHandler::ffmpegExportFinished);
    connect(exportProcess, &QProcess::readyReadStandardError, this, &FFMpegHandler::ffmpegExportError);
    start(exportProcess, ffmpegPath, {});
}

void FFMpegHandler::ffmpegExportError()
{
}

void FFMpegHandler::ffmpegExportFinished(int exitCode)
{
    if (options.progressSteps > progressStepsDone)
        emit ffmpegExportProgress(options.progressSteps - progressStepsDone);
    emit ffmpegExportResult(this, exitCode);
}

void FFMpegHandler::onExportCancel()
{
    if (exportProcess->state() == QProcess::NotRunning) {
        deleteLater();
        return;
    }
    // Deleted with its process, a handler could not report the end of the run, and the batch would never end.
    connect(exportProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &QObject::deleteLater);
    exportProcess->kill();
}

void FFMpegHandler::start(QProcess *process, const QString &program, const QStringList &arguments)
{
    connect(process, &QProcess::errorOccurred, this, &FFMpegHandler::reportFailedStart,
            Qt::QueuedConnection); // starting can fail inside this call
    process->start(resolveTool(program), arguments, QIODevice::ReadWrite);
}

void FFMpegHandler::reportFailedStart(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        emit couldNotStart(this);
}
