// SPDX-License-Identifier: MIT
#include "control/maincontrol.h"

#include "app/records/resultcodes.h"
#include "control/probedrecord.h"
#include "ffmpeg/ffmpeghandler.h"

#include <QElapsedTimer>
#include <QTimerEvent>

// From a drop to the probed record of each of its files.

namespace
{

// The walk through a huge tree hands the thread back after each slice, so that exports, cancelling and
// quitting are served meanwhile. A small drop is walked in one go.
constexpr int sliceEntries = 256; // at least, files and folders
constexpr int sliceTime = 20;     // [ms], at least

// Files are found many times faster than the table takes them, and while it takes what has piled up its
// window answers nobody. So the walk waits until a probe was asked for each file found, but not for ever, and
// then for a moment more, in which the window answers.
constexpr int sliceFiles = 128;    // at most, while a probe was not asked for each of them
constexpr int longestPause = 100;  // [ms]
constexpr int pauseAfterSlice = 1; // [ms]

// The start of a tool keeps the whole program from touching its memory for a while. After a drop many start
// together; between two of them the window gets a moment to answer.
constexpr int pauseBetweenStarts = 5; // [ms]

} // namespace

void MainControl::onIterateThroughDir(QList<QUrl> urls)
{
    emit dropTaken(); // first, as a drop of nothing usable ends at once
    requestStage(urls);
}

void MainControl::startImport(const QList<QUrl> &urls)
{
    stage = Stage::Import;
    startPause.stop();
    const bool isWalking = !walk.atEnd();
    walk.add(urls);
    if (isWalking)
        return;
    jobs.setHeld(JobQueues::Probe, true); // all units must be known before the first one is done
    walkOn();
}

void MainControl::walkOn()
{
    walkPause.stop();
    QElapsedTimer slice;
    slice.start();
    int files = 0;
    for (int entries = 0; !walk.atEnd(); ++entries) {
        if (files >= sliceFiles && unaskedFiles > 0) {
            walkPause.start(longestPause, this);
            return;
        }
        if (entries >= sliceEntries && slice.hasExpired(sliceTime)) {
            QMetaObject::invokeMethod(this, &MainControl::walkOn, Qt::QueuedConnection);
            return;
        }
        if (const auto file = walk.step()) {
            ++files;
            progress.addFile();
            ++unaskedFiles;
            emit gotFileFromDir(*file);
        }
    }
    startHeldProbe();
    endCompleteImport(); // of an earlier drop, while this walk has found nothing
    settleStage();
}

/// Starts one of the probes that were held, and the next one after a pause, until no more may run.
void MainControl::startHeldProbe()
{
    jobs.setHeld(JobQueues::Probe, false);
    const auto file = jobs.takeNext(JobQueues::Probe);
    if (!file) {
        startPause.stop();
        return;
    }
    startProbe(*file);
    jobs.setHeld(JobQueues::Probe, true);
    startPause.start(pauseBetweenStarts, Qt::PreciseTimer, this);
}

void MainControl::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == walkPause.timerId())
        walkOn();
    else if (event->timerId() == startPause.timerId())
        startHeldProbe();
    else
        QObject::timerEvent(event);
}

void MainControl::onFFProbeFile(FileData fileData, int fileNumber)
{
    if (unaskedFiles > 0)
        --unaskedFiles;
    fileData.rowNumber = fileNumber;
    if (jobs.mayStart(JobQueues::Probe))
        startProbe(fileData);
    else
        jobs.enqueue(JobQueues::Probe, fileData);
    if (unaskedFiles == 0 && walkPause.isActive())
        walkPause.start(pauseAfterSlice, Qt::PreciseTimer, this);
}

void MainControl::startProbe(const FileData &file)
{
    const auto fileNumber = static_cast<uint>(file.rowNumber);
    auto *handler = new FFMpegHandler(this);
    connect(handler, &FFMpegHandler::ffprobeResult, this, &MainControl::onFFProbeReady);
    connect(handler, &FFMpegHandler::couldNotStart, this, [this, fileNumber](FFMpegHandler *failed) {
        onFFProbeReady(failed, {}, fileNumber, toolNotStarted);
    });
    handler->probe(file.absoluteFilePath, fileNumber);
    jobs.started(JobQueues::Probe);
}

void MainControl::onFFProbeReady(FFMpegHandler *handler, QJsonObject ffprobeJson, uint fileNumber,
                                 int exitCode)
{
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
        if (stage == Stage::Import)
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
