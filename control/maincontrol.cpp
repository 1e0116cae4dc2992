// SPDX-License-Identifier: MIT
#include "control/maincontrol.h"

#include "ffmpeg/ffmpeghandler.h"
#include "ltc/ltchandler.h"

#include <QProcess>

MainControl::MainControl(QObject *parent) : QObject(parent)
{
}

MainControl::~MainControl()
{
    shutDown();
}

void MainControl::shutDown()
{
    jobs = {};
    waitingStages.clear();
    walk = {};
    walkPause.stop();
    startPause.stop();
    closeStage();

    // All are killed before the first is waited for.
    const auto processes = findChildren<QProcess *>();
    for (QProcess *process : processes)
        process->kill();
    const auto handlers = findChildren<QObject *>(QString(), Qt::FindDirectChildrenOnly);
    for (QObject *handler : handlers)
        handler->disconnect(this); // the end of its tool is no result any more
    qDeleteAll(handlers);

    temporaryFolder.release();
}

void MainControl::finishJob(JobQueues::Kind kind, QObject *handler)
{
    jobs.finished(kind);
    if (handler)
        handler->deleteLater();
    // A file may leave its queue without starting anything; with nothing running, no end of a job would come
    // to take the next.
    while (serveQueues() && jobs.running() == 0) {
    }
    settleStage();
}

bool MainControl::serveQueues()
{
    return jobs.serve([this](JobQueues::Kind kind, const FileData &file) { startQueued(kind, file); });
}

void MainControl::startQueued(JobQueues::Kind kind, const FileData &file)
{
    switch (kind) {
    case JobQueues::Probe:
        return startProbe(file);
    case JobQueues::Extraction:
        return startExtraction(file);
    case JobQueues::Reading:
        return startReaders(file);
    case JobQueues::Export:
        return exportCancelRequested ? dropQueuedExports() : startExport(file);
    case JobQueues::KindCount:
        break;
    }
}

bool MainControl::isImporting() const
{
    return !walk.atEnd() || unaskedFiles > 0 || unreadFiles > 0 || jobs.isBusy(JobQueues::Probe) ||
           jobs.isBusy(JobQueues::Extraction) || jobs.isBusy(JobQueues::Reading);
}

void MainControl::requestStage(const StageRequest &request)
{
    // A drop adds to the import under way, whatever waits for the end of that import.
    if (mayBegin(request) && (stage == Stage::Import || waitingStages.isEmpty()))
        startStage(request);
    else
        waitingStages.enqueue(request);
}

bool MainControl::mayBegin(const StageRequest &request) const
{
    const bool isDrop = std::holds_alternative<QList<QUrl>>(request);
    return isDrop ? stage != Stage::ReRead : stage == Stage::None && !isImporting();
}

void MainControl::startStage(const StageRequest &request)
{
    if (stage == Stage::None && !isImporting())
        temporaryFolder.remove(); // a stage that ends with a failed extraction leaves it
    if (const auto *urls = std::get_if<QList<QUrl>>(&request))
        startImport(*urls);
    else
        startReRead(std::get<ReReadRequest>(request));
}

void MainControl::closeStage()
{
    stage = Stage::None;
    unaskedFiles = 0;
    unreadFiles = 0;
    progress.resetCounters();
}

void MainControl::settleStage()
{
    if (isImporting())
        return;
    if (stage != Stage::None) {
        closeStage();
        progress.resetFraction();
        temporaryFolder.remove();
        emit importIdle();
    }
    while (!waitingStages.isEmpty() && mayBegin(waitingStages.head()))
        startStage(waitingStages.dequeue());
}
