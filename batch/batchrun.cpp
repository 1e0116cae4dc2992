// SPDX-License-Identifier: MIT
#include "batch/batchrun.h"

#include "batch/outcome.h"
#include "batch/reportrecord.h"
#include "control/maincontrol.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

BatchRun::BatchRun(MainControl *control) : control(control)
{
    constexpr auto queued = Qt::QueuedConnection; // the controller is not called back inside its own signals
    connect(this, &BatchRun::iterateThroughDirReq, control, &MainControl::onIterateThroughDir, queued);
    connect(this, &BatchRun::ffprobeFileReq, control, &MainControl::onFFProbeFile, queued);
    connect(this, &BatchRun::initAudioTCInfoReq, control, &MainControl::onInitAudioTCInfo, queued);
    connect(control, &MainControl::gotFileFromDir, this, &BatchRun::addFile, queued);
    connect(control, &MainControl::ffprobeResult, this, &BatchRun::onFFProbeResult, queued);
    connect(control, &MainControl::audioTCReadResult, this, &BatchRun::onAudioTCReadReturn, queued);
    connect(control, &MainControl::importProgress, this, &BatchRun::onImportProgress, queued);
    connect(control, &MainControl::importReady, this, &BatchRun::onImportEnd, queued);
    connect(control, &MainControl::importIdle, this, &BatchRun::onImportEnd, queued);
}

void BatchRun::start(const QStringList &paths)
{
    isRunning = true;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls += QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    emit iterateThroughDirReq(urls);
}

void BatchRun::stop()
{
    if (!isRunning)
        return;
    control->shutDown();
    onImportEnd();
}

QJsonArray BatchRun::records() const
{
    QVector<int> rows = files.allRows(); // in the order in which the file system names them
    std::sort(rows.begin(), rows.end(), [this](int first, int second) {
        return files.record(first).absoluteFilePath < files.record(second).absoluteFilePath;
    });
    QJsonArray records;
    for (const int row : qAsConst(rows)) {
        const FileData &file = files.record(row);
        const QFileInfo info(file.absoluteFilePath);
        records += reportrecord::make(file, files.status(row), info.exists() ? info.size() : -1);
    }
    return records;
}

bool BatchRun::hasFailures() const
{
    const QVector<int> rows = files.allRows();
    return std::any_of(rows.cbegin(), rows.cend(), [this](int row) {
        return outcomeOf(files.record(row), files.status(row)) == Outcome::Failed;
    });
}

void BatchRun::addFile(QFileInfo fileInfo)
{
    if (!isRunning)
        return;
    const int row = files.add(fileInfo);
    open.add(files.record(row));
    emit ffprobeFileReq(files.record(row), row);
}

void BatchRun::onFFProbeResult(FileData fileData, int fileNumber, int exitCode)
{
    if (!isRunning || !files.contains(fileNumber))
        return;
    files.takeProbe(fileData, fileNumber, exitCode);
    if (exitCode != 0) {
        report(open.takeFailure(fileNumber));
        return;
    }
    open.takeProbe(fileNumber, files.record(fileNumber).audioStreamMap.size());
    emit initAudioTCInfoReq(files.record(fileNumber), fileNumber);
}

void BatchRun::onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex,
                                   int exitCode)
{
    if (!isRunning || !files.contains(fileNumber))
        return;
    files.takeReading(ltcResultJson, fileNumber, audioTCStreamIndex, exitCode);
    const bool isExtractionFailure = audioTCStreamIndex < 0;
    report(isExtractionFailure ? open.takeFailure(fileNumber) : open.takeReading(fileNumber));
}

void BatchRun::onImportProgress(int current, int total)
{
    if (isRunning)
        emit progressed("reading", current, total);
}

void BatchRun::onImportEnd()
{
    if (!std::exchange(isRunning, false))
        return;
    report(open.takeRest());
    emit ended();
}

void BatchRun::report(const QVector<int> &rows)
{
    for (const int row : rows)
        emit rowDone(row);
}
