// SPDX-License-Identifier: MIT
// How the controller imports what was dropped, and reads timecodes again: one such stage at a time.
#include "app/records/resultcodes.h"
#include "control/maincontrol.h"
#include "control/probedrecord.h"
#include "control/readerfilename.h"
#include "ffmpeg/ffmpeghandler.h"
#include "ltc/ltchandler.h"

#include <QFile>

using Stage = StageQueue::Stage;

void MainControl::onIterateThroughDir(QList<QUrl> urls)
{
    emit dropTaken(); // first, as a drop of nothing usable ends at once
    if (stages.admit(urls, !isImporting()))
        startStage(urls);
}

void MainControl::onUpdateAudioTCInfo(QVector<FileData> audioTCUpdateFileVector,
                                      AudioTCOptions audioTCOptions)
{
    const StageQueue::ReReadRequest request{audioTCUpdateFileVector, audioTCOptions};
    if (stages.admit(request, !isImporting()))
        startStage(request);
}

void MainControl::startStage(const StageQueue::Request &request)
{
    if (stages.current() == Stage::None && !isImporting())
        temporaryFolder.remove(); // a stage that ends with a failed extraction leaves it
    if (const auto *urls = std::get_if<QList<QUrl>>(&request)) {
        stages.begin(Stage::Import);
        startPause.stop();
        jobs.setHeld(JobQueues::Probe, true); // all units must be known before the first one is done
        walk.add(*urls);
        return;
    }
    const auto &reRead = std::get<StageQueue::ReReadRequest>(request);
    audioTCOptions = reRead.options;
    audioTCUpdateMode = true;
    progress.setFiles(static_cast<uint>(reRead.files.size()));
    if (!reRead.files.isEmpty())
        stages.begin(Stage::ReRead);
    for (const FileData &file : reRead.files)
        startOrQueue(JobQueues::Extraction, file);
}

void MainControl::closeStage()
{
    stages.close();
    walk.forgetRequests();
    unreadFiles = 0;
    progress.resetCounters();
}

void MainControl::settleStage()
{
    if (isImporting())
        return;
    if (stages.current() != Stage::None) {
        closeStage();
        progress.resetFraction();
        temporaryFolder.remove();
        emit importIdle();
    }
    while (const auto request = stages.takeNext(!isImporting()))
        startStage(*request);
}

bool MainControl::isImporting() const
{
    return !walk.atEnd() || walk.isAwaitingRequests() || unreadFiles > 0 || jobs.isBusy(JobQueues::Probe) ||
           jobs.isBusy(JobQueues::Extraction) || jobs.isBusy(JobQueues::Reading);
}

void MainControl::onWalkEnd()
{
    startHeldProbe();
    endCompleteImport(); // of an earlier drop, while this walk has found nothing
    settleStage();
}

void MainControl::onFFProbeFile(FileData fileData, int fileNumber)
{
    fileData.rowNumber = fileNumber;
    startOrQueue(JobQueues::Probe, fileData);
    walk.takeRequest();
}

void MainControl::onFFProbeReady(FFMpegHandler *handler, QJsonObject ffprobeJson, uint fileNumber,
                                 int exitCode)
{
    ++probeResultCount;
    progress.addUnits(1);
    emit importProgress(static_cast<int>(progress.unitsDone()), static_cast<int>(progress.probingTotal()),
                        "importing files...");

    const auto row = static_cast<int>(fileNumber);
    if (exitCode != 0) {
        emit ffprobeResult(FileData(), row, probeFailed);
        progress.addUnits(2); // it will be neither extracted nor read
        endCompleteImport();
    } else if (ffprobeJson.isEmpty()) {
        emit ffprobeResult(FileData(), row, probeToldNothing); // without the two units, on purpose
    } else {
        if (stages.current() == Stage::Import)
            ++unreadFiles;
        emit ffprobeResult(probedRecord(ffprobeJson), row, 0);
    }
    finishJob(JobQueues::Probe, handler);
}

void MainControl::endCompleteImport()
{
    const bool isComplete = progress.hasFiles() && progress.isComplete(StageProgress::Mode::Import);
    if (isComplete && walk.atEnd()) {
        audioTCUpdateMode = false; // may be left from a re-read when nothing of this import was read
        endReading();
    }
}

void MainControl::onInitAudioTCInfo(FileData fileData, int fileIndex)
{
    audioTCUpdateMode = false;
    if (unreadFiles > 0)
        --unreadFiles;
    fileData.rowNumber = fileIndex;
    startOrQueue(JobQueues::Extraction, fileData);
}

void MainControl::onAudioExtractReady(FFMpegHandler *handler, FileData fileData, int errorCode)
{
    const QString text = "prepare files for reading...";
    ++extractResultCount;
    progress.addUnits(1);
    reportReading(text);
    if (errorCode == 0) {
        startOrQueue(JobQueues::Reading, fileData);
    } else {
        progress.addUnits(1); // it will not be read
        reportReading(text);
        emit audioTCReadResult({}, fileData.rowNumber, -1, extractionFailed);
        // Unlike the end by a reader: importReady() after a re-read too, and both the fraction and the
        // temporary folder stay as they are.
        if (walk.atEnd() && progress.isComplete(readingMode())) {
            closeStage();
            emit importReady();
        }
    }
    finishJob(JobQueues::Extraction, handler);
}

void MainControl::onLTCReaderReady(LTCHandler *handler, QJsonObject ltcResultJson, QString filePath,
                                   int exitCode)
{
    const ReaderFileName name = ReaderFileName::parse(filePath);
    emit audioTCReadResult(ltcResultJson, name.row, name.audioStream, exitCode);
    progress.addUnits(1);
    reportReading("reading audio TC...");
    if (walk.atEnd() && progress.isComplete(readingMode()))
        endReading();
    // The shortened name, on purpose: extracted audio stays until the end of the stage.
    if (!name.shortenedPath.isEmpty())
        QFile::remove(name.shortenedPath);
    finishJob(JobQueues::Reading, handler);
}

void MainControl::reportReading(const QString &text)
{
    if (progress.advance(readingMode()))
        emit importProgress(static_cast<int>(progress.unitsDone()),
                            static_cast<int>(progress.total(readingMode())), text);
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
