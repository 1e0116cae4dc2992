// SPDX-License-Identifier: MIT
#include "bench/export/exportfloor.h"

#include "ffmpeg/exportarguments.h"
#include "ffmpeg/exporthints.h"
#include "process/toolresolver.h"

#include <QFileInfo>
#include <QProcessEnvironment>

namespace bench
{

ExportFloor::ExportFloor(const QVector<FileData> &files, ExportOptions options)
{
    options.progressSteps = 15;
    const auto noneIsTaken = [](const QString &) { return false; };
    for (const FileData &file : files) {
        const qint64 size = QFileInfo(file.absoluteFilePath).size();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        exporthints::insertInto(environment, file, options);
        jobs.push_back({toolresolver::resolve("ffmpeg.exe"),
                        exportarguments::build(file, options, size, noneIsTaken).arguments,
                        environment.toStringList()});
    }
}

} // namespace bench
