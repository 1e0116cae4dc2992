// SPDX-License-Identifier: MIT
#include "control/temporaryfolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace
{

QString folderIn(const QString &parentPath)
{
    return QDir::toNativeSeparators(parentPath) + QDir::separator() + "OstrelSyncTemp";
}

/// Whether the folder at \a path is missing, or is a real folder of this user.
bool isOursToUse(const QString &path)
{
    const QFileInfo entry(path);
    if (entry.isSymLink())
        return false;
    if (!entry.exists())
        return true;
#ifdef Q_OS_UNIX
    if (entry.ownerId() != geteuid())
        return false;
#endif
    return entry.isDir();
}

void makePrivateFolder(const QString &path)
{
#ifdef Q_OS_UNIX
    mkdir(QFile::encodeName(path).constData(), S_IRWXU); // QDir would ask for access by everybody
#else
    QDir().mkdir(path);
#endif
}

} // namespace

TemporaryFolder::TemporaryFolder(const QString &parentPath)
    : folderPath(folderIn(parentPath)), lock(folderPath + ".lock")
{
    lock.setStaleLockTime(0); // only the end of its process frees a lock, not its age
    if (!lock.tryLock() || !isOursToUse(folderPath))
        usePrivateName();
    remove();
}

void TemporaryFolder::usePrivateName()
{
    lock.unlock();
    folderPath += '-' + QString::number(QCoreApplication::applicationPid());
    while (!isOursToUse(folderPath))
        folderPath += '-'; // somebody has guessed the process id
}

QString TemporaryFolder::subFolder(const QString &baseName) const
{
    return folderPath + QDir::separator() + baseName;
}

QString TemporaryFolder::createSubFolder(const QString &baseName)
{
    if (!isOursToUse(folderPath))
        usePrivateName(); // between two stages there is no folder, so somebody else may have made one
    makePrivateFolder(folderPath);
    const QString path = subFolder(baseName);
    QDir().mkdir(path);
    return path;
}

void TemporaryFolder::remove()
{
    if (QFileInfo(folderPath).isSymLink())
        QFile::remove(folderPath);
    else
        QDir(folderPath).removeRecursively();
}

void TemporaryFolder::release()
{
    remove();
    lock.unlock();
}
