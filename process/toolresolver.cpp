// SPDX-License-Identifier: MIT
#include "process/toolresolver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString findTool(const QString &program, const QStringList &folders)
{
    for (const QString &folder : folders) {
        if (!QDir::isAbsolutePath(folder))
            continue;
        const QFileInfo candidate(QDir(folder), program);
        if (candidate.isFile() && candidate.isExecutable())
            return QDir::cleanPath(candidate.absoluteFilePath());
    }
    return {};
}

QString resolveTool(const QString &program)
{
    QStringList folders = qEnvironmentVariable("PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    folders += QCoreApplication::applicationDirPath();
    const QString path = findTool(program, folders);
    return path.isEmpty() ? program : path;
}
