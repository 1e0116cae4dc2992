// SPDX-License-Identifier: MIT
#include "process/missingtools.h"

#include "process/toolresolver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QStringList missingTools(const QStringList &searchPath, const QString &applicationFolder)
{
    QStringList missing;
    const QStringList folders = searchPath + QStringList{applicationFolder};
    for (const QString &tool : {QString("ffprobe"), QString("ffmpeg"), QString("LTCReader")}) {
        const QString path = toolresolver::find(tool + ".exe", folders);
        if (path.isEmpty()) {
            missing += tool + ".exe";
            continue;
        }
#ifdef Q_OS_UNIX
        const bool isAdapter = tool != "LTCReader" && QFileInfo(path).absolutePath() == applicationFolder;
        if (isAdapter && toolresolver::find(tool, searchPath).isEmpty())
            missing += tool;
#endif
    }
    return missing;
}

QStringList missingTools()
{
    const QStringList searchPath =
        qEnvironmentVariable("PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return missingTools(searchPath, QCoreApplication::applicationDirPath());
}
