// SPDX-License-Identifier: MIT
#include "control/exportbatch.h"

#include "app/records/resultcodes.h"

#include <QCoreApplication>

namespace
{

constexpr uint unitsPerFile = 15; // progress of one export

QString cancelling()
{
    return QCoreApplication::translate("MainControl", "cancelling export...");
}

QString cancelled()
{
    return QCoreApplication::translate("MainControl", "export cancelled");
}

} // namespace

ExportBatch::Signals ExportBatch::start(int files, const ExportOptions &options)
{
    exportOptions = options;
    exportOptions.progressSteps = unitsPerFile;
    resetCounters();
    exportErrorFileNames.clear();
    exportCancelRequested = false;
    exportFileCount = static_cast<uint>(files);
    exportAllSucceeded = true;
    if (files == 0)
        return {};
    statusMsg = QCoreApplication::translate("MainControl", "exporting files...");
    return {Progress{0, 1, statusMsg}, Started()};
}

ExportBatch::Signals ExportBatch::addProgress(uint units)
{
    exportProgressValue += units;
    return {progress()};
}

ExportBatch::Signals ExportBatch::cancel()
{
    statusMsg = cancelling();
    exportCancelRequested = true;
    return {progress()};
}

ExportBatch::Signals ExportBatch::drop()
{
    ++exportFinishedCount;
    statusMsg = cancelling();
    Signals news{progress()};
    if (exportFinishedCount == exportFileCount) {
        news += finishedFiles();
        news += endCancelled();
    }
    return news;
}

ExportBatch::Signals ExportBatch::dropQueued()
{
    ++exportFinishedCount;
    statusMsg = cancelling();
    Signals news{progress()};
    if (exportFinishedCount == exportFileCount)
        news += endCancelled();
    return news;
}

ExportBatch::Signals ExportBatch::finish(const QString &fileName, int exitCode)
{
    if (exportCancelRequested)
        statusMsg = cancelling();
    ++exportFinishedCount;
    Signals news{progress()};
    if (exitCode != 0) {
        exportErrorFileNames += fileName;
        exportAllSucceeded = false;
    }
    if (exportFinishedCount < exportFileCount)
        return news;
    if (exportCancelRequested) {
        news += finishedFiles();
        // The other way round than endCancelled(), on purpose.
        statusMsg = cancelled();
        news += Progress{0, 1, statusMsg};
        news += Ready{ExportCancelled, exportErrorFileNames};
    } else {
        statusMsg = "ready";
        news += finishedFiles();
        news += Ready{exportAllSucceeded ? ExportSucceeded : ExportHasErrors, exportErrorFileNames};
    }
    resetCounters();
    return news;
}

ExportBatch::Progress ExportBatch::progress() const
{
    return {static_cast<int>(exportProgressValue), static_cast<int>(exportFileCount * unitsPerFile),
            statusMsg};
}

ExportBatch::Progress ExportBatch::finishedFiles() const
{
    return {static_cast<int>(exportFinishedCount), static_cast<int>(exportFileCount), statusMsg};
}

ExportBatch::Signals ExportBatch::endCancelled()
{
    statusMsg = cancelled();
    resetCounters();
    return {Ready{ExportCancelled, exportErrorFileNames}, Progress{0, 1, statusMsg}};
}

void ExportBatch::resetCounters()
{
    exportFileCount = 0;
    exportFinishedCount = 0;
    exportProgressValue = 0;
}
