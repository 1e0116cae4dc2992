// SPDX-License-Identifier: MIT
#include "control/maincontrol.h"

#include "app/records/resultcodes.h"
#include "control/readerfilename.h"
#include "ffmpeg/ffmpeghandler.h"
#include "ltc/ltchandler.h"

#include <QDir>
#include <QFile>

// From a probed file to its timecode: its audio is extracted, then each extracted file is read.

void MainControl::onInitAudioTCInfo(FileData fileData, int fileIndex)
{
    audioTCUpdateMode = false;
    if (unreadFiles > 0)
        --unreadFiles;
    fileData.rowNumber = fileIndex;
    startOrQueueExtraction(fileData);
}

void MainControl::onUpdateAudioTCInfo(QVector<FileData> audioTCUpdateFileVector,
                                      AudioTCOptions audioTCOptions)
{
    requestStage(ReReadRequest{audioTCUpdateFileVector, audioTCOptions});
}

void MainControl::startReRead(const ReReadRequest &request)
{
    audioTCOptions = request.options;
    audioTCUpdateMode = true;
    progress.setFiles(static_cast<uint>(request.files.size()));
    if (request.files.isEmpty())
        return;
    stage = Stage::ReRead;
    for (const FileData &file : request.files)
        startOrQueueExtraction(file);
}

void MainControl::startOrQueueExtraction(const FileData &file)
{
    if (jobs.mayStart(JobQueues::Extraction))
        startExtraction(file);
    else
        jobs.enqueue(JobQueues::Extraction, file);
}

void MainControl::startExtraction(const FileData &file)
{
    auto *handler = new FFMpegHandler(this);
    connect(handler, &FFMpegHandler::ffmpegAudioExtractResult, this, &MainControl::onAudioExtractReady);
    connect(handler, &FFMpegHandler::couldNotStart, this, [this](FFMpegHandler *failed) {
        onAudioExtractReady(failed, failed->fileData(), toolNotStarted);
    });
    handler->extractAudio(file, temporaryFolder.createSubFolder(file.baseName));
    jobs.started(JobQueues::Extraction);
}

void MainControl::onAudioExtractReady(FFMpegHandler *handler, FileData fileData, int errorCode)
{
    const QString text = "prepare files for reading...";
    progress.addUnits(1);
    reportReading(text);
    if (errorCode == 0) {
        startOrQueueReaders(fileData);
    } else {
        progress.addUnits(1); // it will not be read
        reportReading(text);
        emit audioTCReadResult({}, fileData.rowNumber, -1, extractionFailed);
        // Unlike the end by a reader: importReady() after a re-read too, and both the fraction and the
        // temporary folder stay as they are.
        if (isReadingComplete()) {
            closeStage();
            emit importReady();
        }
    }
    finishJob(JobQueues::Extraction, handler);
}

void MainControl::startOrQueueReaders(const FileData &file)
{
    if (jobs.mayStart(JobQueues::Reading))
        startReaders(file);
    else
        jobs.enqueue(JobQueues::Reading, file);
}

void MainControl::startReaders(const FileData &file)
{
    const QDir folder(temporaryFolder.subFolder(file.baseName));
    if (!folder.exists())
        return;
    const QFileInfoList entries = folder.entryInfoList(
        QDir::Files | QDir::AllDirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::DirsFirst);
    uint started = 0;
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() || wasExtractedForAnotherRow(entry.fileName(), file.rowNumber))
            continue;
        startReader(entry.absoluteFilePath(), file.isGoPro); // beyond the limit too: they belong together
        ++started;
    }
    if (started > 1)
        progress.addExtraReads(started - 1);
}

void MainControl::startReader(const QString &path, bool isGoPro)
{
    auto *handler = new LTCHandler(this);
    connect(handler, &LTCHandler::ltcReaderResult, this, &MainControl::onLTCReaderReady);
    connect(handler, &LTCHandler::couldNotStart, this,
            [this, path](LTCHandler *failed) { onLTCReaderReady(failed, {}, path, readerNotInitialised); });
    if (audioTCUpdateMode)
        handler->readTimecode(path, audioTCOptions, isGoPro);
    else
        handler->readTimecode(path, isGoPro);
    jobs.started(JobQueues::Reading);
}

void MainControl::onLTCReaderReady(LTCHandler *handler, QJsonObject ltcResultJson, QString filePath,
                                   int exitCode)
{
    const ReaderFileName name = ReaderFileName::parse(filePath);
    emit audioTCReadResult(ltcResultJson, name.row, name.audioStream, exitCode);
    progress.addUnits(1);
    reportReading("reading audio TC...");
    if (isReadingComplete())
        endReading();
    // The shortened name, on purpose: extracted audio stays until the end of the stage.
    if (!name.shortenedPath.isEmpty())
        QFile::remove(name.shortenedPath);
    finishJob(JobQueues::Reading, handler);
}

StageProgress::Mode MainControl::readingMode() const
{
    return audioTCUpdateMode ? StageProgress::Mode::ReRead : StageProgress::Mode::Import;
}

void MainControl::reportReading(const QString &text)
{
    if (progress.advance(readingMode()))
        emit importProgress(static_cast<int>(progress.unitsDone()),
                            static_cast<int>(progress.total(readingMode())), text);
}

bool MainControl::isReadingComplete() const
{
    return walk.atEnd() && progress.isComplete(readingMode());
}

void MainControl::endReading()
{
    closeStage();
    progress.resetFraction();
    if (audioTCUpdateMode)
        emit readingFinished();
    else
        emit importReady();
    temporaryFolder.remove();
}
