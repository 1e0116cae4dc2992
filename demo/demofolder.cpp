// SPDX-License-Identifier: MIT
#include "demo/demofolder.h"

#include <QDir>
#include <QFile>

namespace
{
constexpr auto marker = ".made-by-ostrel-demo";
}

DemoFolder::DemoFolder(const QString &folderPath) : path(QDir(folderPath).absolutePath())
{
}

QString DemoFolder::prepare() const
{
    const QDir folder(path);
    const bool empty = folder.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    if (folder.exists() && !empty && !folder.exists(marker))
        return QString("%1 holds files that no demo made; choose another folder").arg(path);

    for (const QString &name : {media(), exported(), screenshots()}) {
        QDir(name).removeRecursively();
        if (!QDir().mkpath(name))
            return QString("cannot make the folder %1").arg(name);
    }
    QFile::remove(report());
    QFile markerFile(folder.filePath(marker));
    if (!markerFile.open(QIODevice::WriteOnly))
        return markerFile.errorString();
    return {};
}

QString DemoFolder::sub(const QString &name) const
{
    return QDir(path).filePath(name);
}
