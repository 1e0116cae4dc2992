// SPDX-License-Identifier: MIT
#include "process/toolresolver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace toolresolver
{

QString find(const QString &program, const QStringList &folders)
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

QString resolve(const QString &program)
{
    QStringList folders = qEnvironmentVariable("PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    folders += QCoreApplication::applicationDirPath();
    const QString path = find(program, folders);
    return path.isEmpty() ? program : path;
}

} // namespace toolresolver
