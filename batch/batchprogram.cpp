// SPDX-License-Identifier: MIT
#include "batch/batchprogram.h"

#include "batch/outcome.h"
#include "batch/reportrecord.h"
#include "batch/reports.h"
#include "filelist/celltexts.h"
#include "process/missingtools.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <utility>

namespace
{

constexpr int widestName = 60;    // [characters] in the table; longer names move their line
constexpr int widestFileTC = 17;  // [characters] "file TC not found"
constexpr int widestStart = 11;   // [characters] a timecode, or a sample of a sound file
constexpr int widestAudioTC = 32; // [characters] a drop-frame timecode with rate and channel
constexpr int widestLater = 14;   // [characters] what is put behind it

} // namespace

BatchProgram::BatchProgram(const BatchOptions &options)
    : options(options), run(&control, options.exporting), console(options.quiet)
{
    control.setJobLimit(options.jobs);
    run.setJobLimit(options.jobs);
    run.setVerifying(options.verifying);
    run.setResuming(options.resuming);
    if (options.reading)
        control.setImportOptions(*options.reading);
    if (options.deep)
        run.searchLater(options.reading);
    connect(&run, &BatchRun::rowDone, this, &BatchProgram::onRowDone);
    connect(&run, &BatchRun::ended, this, &BatchProgram::onEnded);
    connect(&run, &BatchRun::progressed, this,
            [this](const QString &what, int done, int total) { console.showProgress(what, done, total); });
}

ExitCode BatchProgram::start()
{
    const QStringList missing = missingTools();
    if (!missing.isEmpty()) {
        console.showProblem("not installed: " + missing.join(", "));
        return ExitCode::ToolMissing;
    }
    if (!areReportsWritable())
        return ExitCode::WrongUsage;
    run.start(options.paths);
    return ExitCode::Done;
}

ExitCode BatchProgram::join()
{
    if (!areReportsWritable())
        return ExitCode::WrongUsage;
    QVector<QJsonArray> all;
    for (const QString &path : std::as_const(options.paths)) {
        QFile file(path);
        const auto records =
            file.open(QIODevice::ReadOnly) ? reports::recordsIn(file.readAll()) : std::nullopt;
        if (!records) {
            console.showProblem(path + " is no report in JSON");
            return ExitCode::WrongUsage;
        }
        all += *records;
    }
    const QJsonArray joined = reports::join(all);
    bool isDone = writeReports(joined);
    for (const QJsonValue &record : joined) {
        if (!reportrecord::isWrong(record.toObject()))
            continue;
        isDone = false;
        console.showProblem(record["path"].toString() + ": " + record["reason"].toString());
    }
    return isDone ? ExitCode::Done : ExitCode::SomeFailed;
}

void BatchProgram::interrupt()
{
    if (std::exchange(isInterrupted, true)) {
        emit finished(static_cast<int>(ExitCode::SomeFailed));
        return;
    }
    run.stop();
}

void BatchProgram::onRowDone(int row)
{
    const ImportedFiles &files = run.importedFiles();
    if (!std::exchange(isTableBegun, true)) {
        int width = 0;
        for (int other = 0; other < files.count(); ++other)
            width = std::max(width, static_cast<int>(files.record(other).fileName.size()));
        QVector<PrintedTable::Column> columns{{"File", std::min(width, widestName)},
                                              {"File TC", widestFileTC},
                                              {"Audio TC", widestAudioTC + (options.deep ? widestLater : 0)}};
        if (options.exporting)
            columns +=
                {{"Exported file", std::min(width, widestName)}, {"Start", widestStart}, {"Verdict", 0}};
        console.beginTable(columns);
    }
    const FileData &file = files.record(row);
    const RowStatus &status = files.status(row);
    const bool isRead = status.audioTC != RowStatus::AudioTC::Unread;
    QStringList cells{file.fileName, celltexts::fileTC(file, status, "-"),
                      isRead ? celltexts::audioTC(file, status, {}) : reasonFor(file, status)};
    if (status.audioTC == RowStatus::AudioTC::Found && run.laterFinding(row).second > 0)
        cells.last() += QString(", at %1 s").arg(run.laterFinding(row).second);
    if (options.exporting) {
        const ExportState &exported = run.exportState(row);
        cells += exported.path.isEmpty() ? QString("-") : QFileInfo(exported.path).fileName();
        cells += exported.start.isEmpty() ? QString("-") : exported.start;
        cells += wordFor(exported);
    }
    console.showRow(cells);
    if (run.hasFailed(row))
        console.showProblem(file.absoluteFilePath + ": " + run.reasonOf(row));
}

void BatchProgram::onEnded()
{
    console.clearBar();
    if (run.importedFiles().count() == 0)
        console.showProblem("no media files found");
    const bool areWritten = writeReports(run.records());
    const bool isDone = areWritten && !isInterrupted && !run.hasFailures();
    emit finished(static_cast<int>(isDone ? ExitCode::Done : ExitCode::SomeFailed));
}

/// Before the work, as it may take hours.
bool BatchProgram::areReportsWritable()
{
    for (const QString &path : std::as_const(options.reports)) {
        const QFileInfo file(path);
        const bool isWritable =
            file.exists() ? file.isFile() && file.isWritable() : QFileInfo(file.absolutePath()).isWritable();
        if (!isWritable) {
            console.showProblem("cannot write the report " + path);
            return false;
        }
    }
    return true;
}

bool BatchProgram::writeReports(const QJsonArray &records)
{
    bool areWritten = true;
    for (const QString &path : std::as_const(options.reports)) {
        const QVector<reports::ReportFile> files = reports::forPath(path, records);
        for (const reports::ReportFile &report : files) {
            QSaveFile file(report.path);
            if (file.open(QIODevice::WriteOnly) && file.write(report.content) == report.content.size() &&
                file.commit())
                continue;
            console.showProblem("cannot write the report " + report.path + ": " + file.errorString());
            areWritten = false;
        }
    }
    return areWritten;
}
