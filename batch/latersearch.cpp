// SPDX-License-Identifier: MIT
#include "batch/latersearch.h"

#include "app/records/resultcodes.h"
#include "ffmpeg/toolarguments.h"
#include "ltc/readerarguments.h"
#include "process/toolprocess.h"
#include "process/toolresolver.h"

#include <QDir>
#include <QJsonDocument>

namespace
{

constexpr const char *mediaTool = "ffmpeg.exe";
constexpr const char *reader = "LTCReader.exe";

constexpr int timecodeFound = 0;
constexpr int timecodeNotFound = 205;
constexpr int noSound = 204; // behind the end of a stream that is shorter than its file

} // namespace

LaterSearch::LaterSearch(const FileData &file, const std::optional<AudioTCOptions> &reading, QObject *parent)
    : QObject(parent),
      file(file),
      reading(reading),
      folder(QDir::tempPath() + "/ostrel-search"),
      streams(toolarguments::audioStreams(file))
{
}

int LaterSearch::windowsLeft() const
{
    return laterwindows::count(file) - second / laterwindows::windowSeconds;
}

void LaterSearch::searchWindow()
{
    if (windowsLeft() == 0 || streams.isEmpty()) {
        LaterFinding finding;
        finding.kind = LaterFinding::Kind::NotFound;
        finding.reason = doubt;
        end(finding);
        return;
    }
    extract(laterwindows::extraction(file, folder.path(), second), [this] { readStream(0); });
}

/// Reads the streams of the window from the one at \a place on.
void LaterSearch::readStream(int place)
{
    if (place == streams.size()) {
        second += laterwindows::windowSeconds;
        emit advanced();
        searchWindow();
        return;
    }
    const QString path = toolarguments::extractedPath(file, folder.path(), streams.at(place));
    read(path, readings.found, place, [this, place] { prove(place); });
}

/// Timecode was found in the stream at \a place: reads it again where the sample is known.
void LaterSearch::prove(int place)
{
    doubt = QString("the timecode at second %1 cannot be confirmed").arg(second);
    const QString folderPath = folder.path();
    extract(laterwindows::exactExtraction(file, folderPath, streams.at(place), second), [this, place,
                                                                                         folderPath] {
        read(laterwindows::exactPath(folderPath, 0), readings.exact, place, [this, place, folderPath] {
            read(laterwindows::exactPath(folderPath, 1), readings.next, place,
                 [this, place] { judge(place); });
        });
    });
}

void LaterSearch::judge(int place)
{
    const LaterFinding finding = laterwindows::countedBack(file, streams.at(place), second, readings);
    if (finding.kind == LaterFinding::Kind::Found) {
        end(finding);
        return;
    }
    doubt = finding.reason;
    readStream(place + 1);
}

void LaterSearch::run(const QString &program, const QStringList &arguments, const Next &next)
{
    auto *process = new ToolProcess(this);
    output.clear();
    if (program == mediaTool) // its messages about damaged sound have no end
        process->setStandardErrorFile(QProcess::nullDevice());
    connect(process, &QProcess::readyReadStandardOutput, this,
            [this, process] { output += process->readAllStandardOutput(); });
    connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this, process, next](int exitCode, QProcess::ExitStatus status) {
                standardError = process->readAllStandardError();
                process->deleteLater();
                next(status == QProcess::NormalExit ? exitCode : toolNotStarted);
            });
    // Queued, since starting can fail inside the call.
    connect(
        process, &QProcess::errorOccurred, this,
        [process, next](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) {
                process->deleteLater();
                next(toolNotStarted);
            }
        },
        Qt::QueuedConnection);
    process->start(toolresolver::resolve(program), arguments, QIODevice::ReadOnly);
}

void LaterSearch::extract(const QStringList &arguments, const std::function<void()> &next)
{
    run(mediaTool, arguments, [this, next](int exitCode) {
        if (exitCode == 0)
            next();
        else
            fail(extractionFailed);
    });
}

/// Goes on with \a next when there is timecode in \a path, and with the stream after \a place when there is
/// none. A stream whose labels do not count up is not searched any further.
void LaterSearch::read(const QString &path, QJsonObject &result, int place, const std::function<void()> &next)
{
    const QStringList arguments = reading ? readerarguments::chosen(path, *reading, file.isGoPro)
                                          : readerarguments::automatic(path, file.isGoPro);
    run(reader, arguments, [this, path, &result, place, next](int exitCode) {
        result = QJsonDocument::fromJson(output).object();
        const QString fault = laterwindows::labelFault(standardError, path);
        if (exitCode == timecodeNotFound && !fault.isEmpty()) {
            doubt = QString("the timecode at second %1: %2").arg(second).arg(fault);
            streams.removeAt(place);
            readStream(place);
        } else if (exitCode == timecodeFound && !result["Timecode"].toString().isEmpty()) {
            next();
        } else if (exitCode == timecodeFound || exitCode == timecodeNotFound || exitCode == noSound) {
            readStream(place + 1);
        } else {
            fail(exitCode);
        }
    });
}

void LaterSearch::end(const LaterFinding &finding)
{
    emit done(this, file.rowNumber, finding);
}

void LaterSearch::fail(int exitCode)
{
    LaterFinding finding;
    finding.kind = LaterFinding::Kind::Failed;
    finding.exitCode = exitCode == toolNotStarted ? readerNotInitialised : exitCode;
    finding.reason = QString("not searched to the end: the tools have failed at second %1").arg(second);
    end(finding);
}
