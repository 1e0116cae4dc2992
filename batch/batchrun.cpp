// SPDX-License-Identifier: MIT
#include "batch/batchrun.h"

#include "app/records/resultcodes.h"
#include "batch/latersearch.h"
#include "batch/laterwindows.h"
#include "batch/outcome.h"
#include "batch/reportrecord.h"
#include "control/maincontrol.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{

/// Gives what is at \a path a name that says that it was not proven to be whole. Returns the name; empty
/// where nothing is there.
QString unproven(const QString &path)
{
    const QString renamed = path + ".unverified";
    if (!QFile::exists(path))
        return {};
    QFile::remove(renamed); // of an earlier run
    return QFile::rename(path, renamed) ? renamed : path;
}

} // namespace

BatchRun::BatchRun(MainControl *control, const std::optional<ExportOptions> &exporting)
    : control(control), exporting(exporting)
{
    if (exporting) {
        notes.emplace(*exporting);
        control->setNameClaim(
            [own = *notes](const FileData &file, const QString &path) { return own.claim(file, path); });
    }
    constexpr auto queued = Qt::QueuedConnection; // the controller is not called back inside its own signals
    connect(this, &BatchRun::iterateThroughDirReq, control, &MainControl::onIterateThroughDir, queued);
    connect(this, &BatchRun::ffprobeFileReq, control, &MainControl::onFFProbeFile, queued);
    connect(this, &BatchRun::initAudioTCInfoReq, control, &MainControl::onInitAudioTCInfo, queued);
    connect(this, &BatchRun::exportFilesReq, control, &MainControl::onExportReq, queued);
    connect(this, &BatchRun::cancelExport, control, &MainControl::onExportCancel, queued);
    connect(control, &MainControl::gotFileFromDir, this, &BatchRun::addFile, queued);
    connect(control, &MainControl::ffprobeResult, this, &BatchRun::onFFProbeResult, queued);
    connect(control, &MainControl::audioTCReadResult, this, &BatchRun::onAudioTCReadReturn, queued);
    connect(control, &MainControl::importProgress, this, &BatchRun::onImportProgress, queued);
    connect(control, &MainControl::importReady, this, &BatchRun::onImportEnd, queued);
    connect(control, &MainControl::importIdle, this, &BatchRun::onImportEnd, queued);
    connect(control, &MainControl::exportProgress, this, &BatchRun::onExportProgress, queued);
    connect(control, &MainControl::fileExported, this, &BatchRun::onFileExported, queued);
    connect(control, &MainControl::exportReady, this, &BatchRun::onExportEnd, queued);
}

void BatchRun::searchLater(const std::optional<AudioTCOptions> &reading)
{
    isSearchingLater = true;
    searchReading = reading;
}

void BatchRun::start(const QStringList &paths)
{
    phase = Phase::Reading;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls += QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    emit iterateThroughDirReq(urls);
}

void BatchRun::stop()
{
    isStopped = true;
    if (phase == Phase::Exporting) {
        qDeleteAll(checks);
        checks.clear();
        uncheckedRows.clear();
        for (int row = 0; row < files.count(); ++row) {
            if (isUnchecked(row))
                setVerdict(row, {false, "not checked", {}});
        }
        emit cancelExport();
        endWhenChecked(); // the controller may have no end to report any more
    } else if (phase == Phase::Reading) {
        control->shutDown();
        onImportEnd();
    } else if (phase == Phase::Searching) {
        endSearching();
    }
}

bool BatchRun::hasFailed(int row) const
{
    return ::hasFailed(exports.at(row)) || outcomeOf(files.record(row), files.status(row)) == Outcome::Failed;
}

QString BatchRun::reasonOf(int row) const
{
    const QString reason = reasonFor(exports.at(row));
    return reason.isEmpty() ? reasonFor(files.record(row), files.status(row), laterFindings.at(row)) : reason;
}

QJsonArray BatchRun::records() const
{
    QJsonArray records;
    const QVector<int> rows = rowsByPath();
    for (const int row : rows) {
        const FileData &file = files.record(row);
        const QFileInfo info(file.absoluteFilePath);
        const qint64 size = info.exists() ? info.size() : -1;
        records += reportrecord::make(file, files.status(row), size, exports.at(row), laterFindings.at(row));
    }
    return records;
}

bool BatchRun::hasFailures() const
{
    const QVector<int> rows = files.allRows();
    return std::any_of(rows.cbegin(), rows.cend(), [this](int row) { return hasFailed(row); });
}

void BatchRun::addFile(QFileInfo fileInfo)
{
    if (phase != Phase::Reading)
        return;
    const int row = files.add(fileInfo);
    open.add(files.record(row));
    exports += ExportState();
    laterFindings += LaterFinding();
    emit ffprobeFileReq(files.record(row), row);
}

void BatchRun::onFFProbeResult(FileData fileData, int fileNumber, int exitCode)
{
    if (phase != Phase::Reading || !files.contains(fileNumber))
        return;
    files.takeProbe(fileData, fileNumber, exitCode);
    if (exitCode != 0) {
        report(open.takeFailure(fileNumber));
        return;
    }
    open.takeProbe(fileNumber, static_cast<int>(files.record(fileNumber).audioStreamMap.size()));
    emit initAudioTCInfoReq(files.record(fileNumber), fileNumber);
}

void BatchRun::onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex,
                                   int exitCode)
{
    if (phase != Phase::Reading || !files.contains(fileNumber))
        return;
    files.takeReading(ltcResultJson, fileNumber, audioTCStreamIndex, exitCode);
    const bool isExtractionFailure = audioTCStreamIndex < 0;
    report(isExtractionFailure ? open.takeFailure(fileNumber) : open.takeReading(fileNumber));
}

void BatchRun::onImportProgress(int current, int total)
{
    if (phase == Phase::Reading)
        emit progressed("reading", current, total);
}

void BatchRun::onImportEnd()
{
    if (phase != Phase::Reading)
        return;
    report(open.takeRest());
    if (isSearchingLater && !isStopped)
        startSearching();
    else
        goOn();
}

/// After reading.
void BatchRun::goOn()
{
    if (exporting && !isStopped)
        startExport();
    else
        end();
}

/// Whether \a row has shown no timecode where it was read, and goes on after that.
bool BatchRun::mayCarryLater(int row) const
{
    return isSearchingLater && files.status(row).audioTC == RowStatus::AudioTC::NotFound &&
           laterwindows::count(files.record(row)) > 1;
}

void BatchRun::startSearching()
{
    phase = Phase::Searching;
    const QVector<int> rows = rowsByPath();
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(searchedRows),
                 [this](int row) { return mayCarryLater(row); });
    unsearchedRows = searchedRows;
    startSearches();
}

void BatchRun::startSearches()
{
    while (!unsearchedRows.isEmpty() && searches.size() < jobLimit) {
        FileData file = files.record(unsearchedRows.first());
        file.rowNumber = unsearchedRows.takeFirst();
        if (!mayCarryLater(file.rowNumber)) // a sibling's timecode was found meanwhile
            continue;
        auto *search = new LaterSearch(file, searchReading, this);
        connect(search, &LaterSearch::advanced, this, &BatchRun::reportSearching);
        connect(search, &LaterSearch::done, this, &BatchRun::onSearched);
        searches += search;
        search->start();
    }
    reportSearching();
    if (searches.isEmpty())
        endSearching();
}

void BatchRun::reportSearching()
{
    int total = 0;
    int left = 0;
    for (const int row : qAsConst(searchedRows))
        total += laterwindows::count(files.record(row));
    for (const int row : qAsConst(unsearchedRows))
        left += laterwindows::count(files.record(row));
    for (const LaterSearch *search : qAsConst(searches))
        left += search->windowsLeft();
    if (total > 0)
        emit progressed("searching", total - left, total);
}

void BatchRun::onSearched(LaterSearch *search, int row, const LaterFinding &finding)
{
    searches.removeOne(search);
    search->deleteLater();
    laterFindings[row] = finding;
    if (finding.kind == LaterFinding::Kind::Found)
        files.takeReading(finding.result, row, finding.stream, 0);
    else if (finding.kind == LaterFinding::Kind::Failed)
        files.takeReading({}, row, -1, finding.exitCode);
    startSearches();
}

/// What was not searched to its end has failed: the run was stopped.
void BatchRun::endSearching()
{
    qDeleteAll(searches);
    searches.clear();
    unsearchedRows.clear();
    for (const int row : qAsConst(searchedRows)) {
        if (!mayCarryLater(row) || laterFindings.at(row).kind != LaterFinding::Kind::NotSearched)
            continue;
        laterFindings[row].kind = LaterFinding::Kind::Failed;
        laterFindings[row].reason = "not searched to the end";
        files.takeReading({}, row, -1, extractionFailed);
    }
    report(searchedRows);
    goOn();
}

void BatchRun::startExport()
{
    phase = Phase::Exporting;
    // In the order of their paths, so that files of one name get the same numbers in each run.
    QVector<int> rows = rowsByPath();
    const auto isUnread = [this](int row) {
        return outcomeOf(files.record(row), files.status(row)) == Outcome::Failed;
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isUnread), rows.end());
    QVector<FileData> taken = files.takeForExport(rows, *exporting);
    for (const int row : std::as_const(rows))
        exports[row].kind = ExportState::Kind::LeftOut;
    for (const FileData &file : std::as_const(taken))
        exports[file.rowNumber].kind = ExportState::Kind::UnderWay;
    const auto isDone = [this](const FileData &file) { return isResuming && takeEarlier(file); };
    taken.erase(std::remove_if(taken.begin(), taken.end(), isDone), taken.end());
    for (const int row : std::as_const(rows)) {
        if (exports.at(row).kind != ExportState::Kind::UnderWay)
            emit rowDone(row);
    }
    if (taken.isEmpty())
        end();
    else
        emit exportFilesReq(taken, *exporting);
}

/// Whether an earlier run has exported \a file. What it has left half done is removed.
bool BatchRun::takeEarlier(const FileData &file)
{
    notes->removeHalfDone(file);
    const auto done = notes->verifiedExport(file);
    if (!done)
        return false;
    ExportState &exported = exports[file.rowNumber];
    exported.kind = ExportState::Kind::Verified;
    exported.path = done->path;
    exported.start = done->start;
    exported.verdict = "verified by an earlier run";
    return true;
}

void BatchRun::onExportProgress(int current, int total)
{
    if (phase != Phase::Exporting || isStopped)
        return;
    // Between the begin and the end, which count otherwise, files are worth many units each.
    if (total > files.count())
        emit progressed("exporting", current, total);
}

void BatchRun::onFileExported(int rowNumber, QString outputPath, int exitCode)
{
    if (phase != Phase::Exporting || !files.contains(rowNumber))
        return;
    if (exitCode != 0 || !isVerifying)
        notes->drop(outputPath);
    if (isStopped && !QFile::exists(outputPath)) // cancelled
        return;
    ExportState &exported = exports[rowNumber];
    exported.exitCode = exitCode;
    exported.path = outputPath;
    if (exitCode == 0 && isVerifying && !isStopped) {
        uncheckedRows += rowNumber;
        startChecks();
    } else if (exitCode == 0 && isVerifying) {
        setVerdict(rowNumber, {false, "not checked", {}});
    } else {
        exported.kind = exitCode == 0 ? ExportState::Kind::Written : ExportState::Kind::Failed;
        if (exitCode != 0)
            setAside(rowNumber);
        emit rowDone(rowNumber);
    }
}

void BatchRun::startChecks()
{
    while (!uncheckedRows.isEmpty() && checks.size() < jobLimit) {
        const int row = uncheckedRows.takeFirst();
        auto *check = new FileCheck(files.record(row), *exporting, exports.at(row).path, this);
        connect(check, &FileCheck::done, this, &BatchRun::onChecked);
        checks += check;
        check->start();
    }
}

void BatchRun::onChecked(FileCheck *check, int row, const Verdict &verdict)
{
    if (!checks.removeOne(check)) // given up
        return;
    check->deleteLater();
    setVerdict(row, verdict);
    startChecks();
    endWhenChecked();
}

void BatchRun::setVerdict(int row, const Verdict &verdict)
{
    ExportState &exported = exports[row];
    exported.kind = verdict.isProven ? ExportState::Kind::Verified : ExportState::Kind::Unverified;
    exported.verdict = verdict.text;
    exported.start = verdict.start;
    if (verdict.isProven) {
        notes->setVerified(files.record(row), exported.path, verdict.start);
    } else {
        setAside(row);
    }
    emit rowDone(row);
}

/// Frees the name of the new file of \a row, which was not proven to be whole. What is left of it counts as
/// half done: a run that resumes removes it.
void BatchRun::setAside(int row)
{
    ExportState &exported = exports[row];
    const QString path = std::exchange(exported.path, unproven(exported.path));
    notes->drop(path);
    if (exported.path.isEmpty())
        return;
    notes->drop(exported.path); // of an earlier run
    notes->claim(files.record(row), exported.path);
}

bool BatchRun::isUnchecked(int row) const
{
    return exports.at(row).kind == ExportState::Kind::UnderWay && !exports.at(row).path.isEmpty();
}

void BatchRun::onExportEnd()
{
    isExportOver = true;
    endWhenChecked();
}

void BatchRun::endWhenChecked()
{
    if (phase != Phase::Exporting || !isExportOver || !checks.isEmpty() || !uncheckedRows.isEmpty())
        return;
    for (int row = 0; row < files.count(); ++row) {
        if (exports.at(row).kind == ExportState::Kind::UnderWay)
            emit rowDone(row);
    }
    end();
}

void BatchRun::end()
{
    phase = Phase::Idle;
    emit ended();
}

QVector<int> BatchRun::rowsByPath() const
{
    QVector<int> rows = files.allRows(); // in the order in which the file system names them
    std::sort(rows.begin(), rows.end(), [this](int first, int second) {
        return files.record(first).absoluteFilePath < files.record(second).absoluteFilePath;
    });
    return rows;
}

/// Of an import. A file that is to be exported is not done by it.
void BatchRun::report(const QVector<int> &rows)
{
    for (const int row : rows) {
        const bool isRead = phase == Phase::Searching || isStopped || !mayCarryLater(row);
        const bool hasFailedToRead = outcomeOf(files.record(row), files.status(row)) == Outcome::Failed;
        if (isRead && (!exporting || isStopped || hasFailedToRead))
            emit rowDone(row);
    }
}
