// SPDX-License-Identifier: MIT
#include "control/maincontrol.h"

#include "app/records/resultcodes.h"
#include "ffmpeg/ffmpeghandler.h"

#include <QFile>

// A batch of exports, from its request to its end or its cancelling.

namespace
{

constexpr uint unitsPerFile = 15; // progress of one export

} // namespace

void MainControl::onExportReq(QVector<FileData> exportFileVector, ExportOptions exportOptions)
{
    this->exportOptions = exportOptions;
    this->exportOptions.progressSteps = unitsPerFile;
    resetExportCounters();
    exportErrorFileNames.clear();
    exportCancelRequested = false;
    exportFileCount = static_cast<uint>(exportFileVector.size());
    exportAllSucceeded = true;
    if (exportFileVector.isEmpty())
        return;

    statusMsg = tr("exporting files...");
    emit exportProgress(0, 1, statusMsg);
    emit exportStarted();
    for (const FileData &file : qAsConst(exportFileVector)) {
        if (exportCancelRequested) {
            ++exportFinishedCount;
            statusMsg = tr("cancelling export...");
            reportExport();
            if (exportFinishedCount == exportFileCount) {
                reportFinishedFiles();
                endCancelledBatch();
                return;
            }
        } else if (jobs.mayStart(JobQueues::Export)) {
            startExport(file);
        } else {
            jobs.enqueue(JobQueues::Export, file);
        }
    }
}

void MainControl::startExport(const FileData &file)
{
    auto *handler = new FFMpegHandler(this);
    connect(handler, &FFMpegHandler::ffmpegExportResult, this, &MainControl::onExportReady);
    connect(handler, &FFMpegHandler::ffmpegExportProgress, this, &MainControl::onExportProgress);
    connect(handler, &FFMpegHandler::couldNotStart, this, &MainControl::failExport);
    connect(this, &MainControl::cancelExportReq, handler, &FFMpegHandler::onExportCancel);
    handler->setBatchSize(static_cast<int>(exportFileCount));
    handler->buildExportArguments(file, exportOptions);
    jobs.started(JobQueues::Export);
}

void MainControl::failExport(FFMpegHandler *handler)
{
    onExportProgress(exportOptions.progressSteps);
    onExportReady(handler, toolNotStarted);
}

void MainControl::dropQueuedExports()
{
    statusMsg = tr("cancelling export...");
    do { // the first has left its queue already
        ++exportFinishedCount;
        reportExport();
        if (exportFinishedCount == exportFileCount)
            endCancelledBatch();
    } while (jobs.takeNext(JobQueues::Export));
}

void MainControl::onExportReady(FFMpegHandler *handler, int exitCode)
{
    if (exportCancelRequested) {
        statusMsg = tr("cancelling export...");
        QFile::remove(handler->outputFilePath()); // partly written
    }
    ++exportFinishedCount;
    reportExport();
    if (exitCode != 0) {
        exportErrorFileNames += handler->fileData().fileName;
        exportAllSucceeded = false;
    }
    if (exportFinishedCount >= exportFileCount) {
        if (exportCancelRequested) {
            reportFinishedFiles();
            // The other way round than endCancelledBatch(), on purpose.
            statusMsg = tr("export cancelled");
            emit exportProgress(0, 1, statusMsg);
            emit exportReady(exportCancelled, exportErrorFileNames);
        } else {
            statusMsg = "ready";
            reportFinishedFiles();
            emit exportReady(exportAllSucceeded ? exportSucceeded : exportHasErrors, exportErrorFileNames);
        }
        resetExportCounters();
    }
    finishJob(JobQueues::Export, handler);
}

void MainControl::onExportProgress(uint addedValueToProgress)
{
    exportProgressValue += addedValueToProgress;
    reportExport();
}

void MainControl::onExportCancel()
{
    statusMsg = tr("cancelling export...");
    exportCancelRequested = true;
    reportExport();
    emit cancelExportReq();
}

void MainControl::reportExport()
{
    emit exportProgress(static_cast<int>(exportProgressValue),
                        static_cast<int>(exportFileCount * unitsPerFile), statusMsg);
}

void MainControl::reportFinishedFiles()
{
    emit exportProgress(static_cast<int>(exportFinishedCount), static_cast<int>(exportFileCount), statusMsg);
}

void MainControl::endCancelledBatch()
{
    statusMsg = tr("export cancelled");
    emit exportReady(exportCancelled, exportErrorFileNames);
    emit exportProgress(0, 1, statusMsg);
    resetExportCounters();
}

void MainControl::resetExportCounters()
{
    exportFileCount = 0;
    exportFinishedCount = 0;
    exportProgressValue = 0;
}
