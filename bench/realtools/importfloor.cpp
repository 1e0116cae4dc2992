// SPDX-License-Identifier: MIT
#include "bench/realtools/importfloor.h"

#include "bench/realtools/mediafolder.h"
#include "bench/support/benchmarkprogram.h"
#include "control/probedrecord.h"
#include "ffmpeg/toolarguments.h"
#include "ltc/readerarguments.h"
#include "process/toolresolver.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>

namespace bench
{

namespace
{

constexpr int noTimecode = 205; // the reader's exit code

FileData probedFile(const QString &path)
{
    QProcess probe;
    probe.start(toolresolver::resolve("ffprobe.exe"), toolarguments::probe(path));
    if (!probe.waitForFinished() || probe.exitCode() != 0)
        throw Failure(path + " cannot be probed");
    return probedRecord(QJsonDocument::fromJson(probe.readAllStandardOutput()).object());
}

Job importJob(FileData file, const QString &folder)
{
    Job probe{toolresolver::resolve("ffprobe.exe"), toolarguments::probe(file.absoluteFilePath)};
    Job extraction{toolresolver::resolve("ffmpeg.exe"), toolarguments::audioExtraction(file, folder)};
    const QVector<int> streams = toolarguments::audioStreams(file);
    for (const int stream : streams) {
        const QString path = toolarguments::extractedPath(file, folder, stream);
        Job reader{toolresolver::resolve("LTCReader.exe"), readerarguments::automatic(path, file.isGoPro)};
        reader.otherGoodExitCode = noTimecode;
        extraction.followers.push_back(reader);
    }
    probe.followers.push_back(extraction);
    return probe;
}

} // namespace

ImportFloor::ImportFloor(const QStringList &paths)
{
    QVector<FileData> kinds;
    for (int row = 0; row < paths.size(); ++row) {
        if (row < MediaFolder::kinds)
            kinds += probedFile(paths.at(row));
        const QFileInfo info(paths.at(row));
        FileData file = kinds.at(row % MediaFolder::kinds);
        file.fileName = info.fileName();
        file.absoluteFilePath = info.absoluteFilePath();
        file.rowNumber = row;
        const QString folder = extracted.filePath(info.baseName());
        QDir().mkpath(folder);
        jobs.push_back(importJob(file, folder));
    }
}

} // namespace bench
