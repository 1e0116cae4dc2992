// SPDX-License-Identifier: MIT
#include "control/maincontrol.h"

#include "control/readerfilename.h"
#include "control/tooljobs.h"
#include "ffmpeg/ffmpeghandler.h"

#include <QFile>

#include <utility>

namespace
{

// The start of a tool keeps the whole program from touching its memory for a while. After a drop many start
// together; between two of them the window gets a moment to answer.
constexpr int pauseBetweenStarts = 5; // [ms]

} // namespace

MainControl::MainControl(QObject *parent) : QObject(parent), walk(this), startPause(this)
{
    connect(&walk, &PacedWalk::fileFound, this, [this](const QFileInfo &file) {
        progress.addFile();
        emit gotFileFromDir(file);
    });
    connect(&walk, &PacedWalk::ended, this, &MainControl::onWalkEnd);
    connect(&startPause, &QTimer::timeout, this, &MainControl::startHeldProbe);
    startPause.setTimerType(Qt::PreciseTimer);
    startPause.setInterval(pauseBetweenStarts);
}

MainControl::~MainControl()
{
    shutDown();
}

void MainControl::shutDown()
{
    jobs = {};
    stages.clear();
    walk.stop();
    startPause.stop();
    closeStage();

    tooljobs::endAll(this);
    temporaryFolder.release();
}

void MainControl::startOrQueue(JobQueues::Kind kind, const FileData &file)
{
    if (jobs.mayStart(kind))
        startJob(kind, file);
    else
        jobs.enqueue(kind, file);
}

void MainControl::startJob(JobQueues::Kind kind, const FileData &file)
{
    if (kind == JobQueues::Reading) {
        startReaders(file);
    } else if (kind == JobQueues::Export && batch.isCancelled()) {
        do { // the first has left its queue already
            send(batch.dropQueued());
        } while (jobs.takeNext(JobQueues::Export));
    } else {
        if (kind == JobQueues::Probe)
            tooljobs::probe(this, file);
        else if (kind == JobQueues::Extraction)
            tooljobs::extract(this, file, temporaryFolder.createSubFolder(file.baseName));
        else
            tooljobs::exportFile(this, file, batch);
        jobs.started(kind);
    }
}

void MainControl::startReaders(const FileData &file)
{
    const auto options = audioTCUpdateMode ? std::make_optional(audioTCOptions) : importOptions;
    const QStringList paths = extractedFiles(temporaryFolder.subFolder(file.baseName), file.rowNumber);
    for (const QString &path : paths) {
        tooljobs::read(this, path, options, file.isGoPro);
        jobs.started(JobQueues::Reading); // beyond the limit too: they belong together
    }
    if (paths.size() > 1)
        progress.addExtraReads(static_cast<uint>(paths.size() - 1));
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
    startJob(JobQueues::Probe, *file);
    jobs.setHeld(JobQueues::Probe, true);
    startPause.start();
}

void MainControl::finishJob(JobQueues::Kind kind, QObject *handler)
{
    jobs.finished(kind);
    if (handler)
        handler->deleteLater();
    // A file may leave its queue without starting anything; with nothing running, no end of a job would come
    // to take the next.
    const auto start = [this](JobQueues::Kind next, const FileData &file) { startJob(next, file); };
    while (jobs.serve(start) && jobs.running() == 0) {
    }
    settleStage();
}

void MainControl::onExportReq(QVector<FileData> exportFileVector, ExportOptions exportOptions)
{
    send(batch.start(static_cast<int>(exportFileVector.size()), exportOptions));
    for (const FileData &file : std::as_const(exportFileVector)) {
        if (batch.isCancelled())
            send(batch.drop());
        else
            startOrQueue(JobQueues::Export, file);
    }
}

void MainControl::onExportReady(FFMpegHandler *handler, int exitCode)
{
    if (batch.isCancelled())
        QFile::remove(handler->outputFilePath()); // partly written
    emit fileExported(handler->fileData().rowNumber, handler->outputFilePath(), exitCode);
    send(batch.finish(handler->fileData().fileName, exitCode));
    finishJob(JobQueues::Export, handler);
}

void MainControl::onExportProgress(uint addedValueToProgress)
{
    send(batch.addProgress(addedValueToProgress));
}

void MainControl::onExportCancel()
{
    send(batch.cancel());
    emit cancelExportReq();
}

void MainControl::send(const ExportBatch::Signals &news)
{
    for (const auto &signal : news) {
        if (const auto *step = std::get_if<ExportBatch::Progress>(&signal))
            emit exportProgress(step->current, step->total, step->statusMsg);
        else if (const auto *end = std::get_if<ExportBatch::Ready>(&signal))
            emit exportReady(end->result, end->failedFiles);
        else
            emit exportStarted();
    }
}
