// SPDX-License-Identifier: MIT
#include "ffmpeg/ffmpeghandler.h"

#include "ffmpeg/exportarguments.h"
#include "ffmpeg/exporthints.h"
#include "ffmpeg/exportprogress.h"
#include "ffmpeg/toolarguments.h"
#include "process/toolprocess.h"
#include "process/toolresolver.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QProcessEnvironment>

#include <algorithm>
#include <utility>

namespace
{

// A description takes kilobytes. Of a tool that does not stop printing, no more than this is kept.
constexpr int mostProbeOutput = 64 * 1024 * 1024; // [bytes]

} // namespace

FFMpegHandler::FFMpegHandler(QObject *parent)
    : QObject(parent),
      exportProcess(new ToolProcess(this)),
      probeProcess(new ToolProcess(this)),
      extractProcess(new ToolProcess(this))
{
    // A process keeps what it is not asked for, and damaged sources make tools print a line for each frame.
    for (QProcess *process : {probeProcess, extractProcess})
        process->setStandardErrorFile(QProcess::nullDevice());
    for (QProcess *process : {extractProcess, exportProcess})
        process->setStandardOutputFile(QProcess::nullDevice());
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
    if (probeOutput.size() > mostProbeOutput) {
        probeProcess->closeReadChannel(QProcess::StandardOutput);
        probeProcess->kill();
    }
}

void FFMpegHandler::ffprobeFinished(int exitCode)
{
    if (probeOutput.size() > mostProbeOutput) // it has not failed but was stopped
        emit ffprobeResult(this, {}, fileNumber, 0);
    else
        emit ffprobeResult(this, QJsonDocument::fromJson(probeOutput).object(), fileNumber, exitCode);
    probeOutput.clear();
}

void FFMpegHandler::extractAudio(const FileData &fileData, const QString &targetFolderPath)
{
    record = fileData;
    connect(extractProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &FFMpegHandler::ffmpegAudioExtractFinished);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    exporthints::insertSource(environment, record);
    extractProcess->setProcessEnvironment(environment);
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
    inputFileSize = QFileInfo(record.absoluteFilePath).size();
    const exportarguments::ExportCommand command = exportarguments::build(
        record, options, inputFileSize, [this](const QString &path) { return isTaken(path); });
    outputPath = command.outputPath;
    expectedOutputSize = command.expectedOutputSize;

    connect(exportProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &FFMpegHandler::ffmpegExportFinished);
    connect(exportProcess, &QProcess::readyReadStandardError, this, &FFMpegHandler::ffmpegExportError);
    connect(exportProcess, &QProcess::readyReadStandardError, this,
            [this] { exportProcess->readAllStandardError(); }); // it is no more than a heartbeat
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    exporthints::insertInto(environment, record, options, batchSize);
    exportProcess->setProcessEnvironment(environment);
    start(exportProcess, ffmpegPath, command.arguments);
}

bool FFMpegHandler::isTaken(const QString &path) const
{
    if (QFileInfo(path).isFile())
        return true;
    if (isTakenByHandler(path))
        return true;
    return nameClaim && !nameClaim(path);
}

bool FFMpegHandler::isTakenByHandler(const QString &path) const
{
    if (!parent())
        return false;
    const auto handlers = parent()->findChildren<FFMpegHandler *>(QString(), Qt::FindDirectChildrenOnly);
    return std::any_of(handlers.begin(), handlers.end(), [this, &path](const FFMpegHandler *other) {
        return other != this && other->isWriting(path);
    });
}

bool FFMpegHandler::isWriting(const QString &path) const
{
    return exportProcess->state() != QProcess::NotRunning &&
           outputPath.compare(path, Qt::CaseInsensitive) == 0; // one file where case does not count
}

void FFMpegHandler::ffmpegExportError()
{
    if (!exportprogress::isMeasured(progressStepsDone, options.progressSteps))
        return;
    const uint before = progressStepsDone;
    const qint64 size = QFileInfo(outputPath).size(); // 0 while there is no file
    progressStepsDone =
        exportprogress::stepsReached(size, expectedOutputSize, progressStepsDone, options.progressSteps);
    emit ffmpegExportProgress(progressStepsDone - before);
}

void FFMpegHandler::ffmpegExportFinished(int exitCode)
{
    const uint before = std::exchange(progressStepsDone, options.progressSteps);
    if (progressStepsDone > before)
        emit ffmpegExportProgress(progressStepsDone - before);
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
    connect(this, &FFMpegHandler::couldNotStart, this, &QObject::deleteLater);
    exportProcess->kill();
}

void FFMpegHandler::start(QProcess *process, const QString &program, const QStringList &arguments)
{
    connect(process, &QProcess::errorOccurred, this, &FFMpegHandler::reportFailedStart,
            Qt::QueuedConnection); // starting can fail inside this call
    process->start(toolresolver::resolve(program), arguments, QIODevice::ReadWrite);
}

void FFMpegHandler::reportFailedStart(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        emit couldNotStart(this);
}
