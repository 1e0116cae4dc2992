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

const QLatin1String lockSuffix(".lock");

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

void removeFolder(const QString &path)
{
    if (QFileInfo(path).isSymLink())
        QFile::remove(path);
    else
        QDir(path).removeRecursively();
}

/// The lock of the folder at \a path; null when the folder is not to be used or another instance has it.
std::unique_ptr<QLockFile> lockFolder(const QString &path)
{
    if (!isOursToUse(path))
        return nullptr;
    auto lock = std::make_unique<QLockFile>(path + lockSuffix);
    lock->setStaleLockTime(0); // only the end of its process frees a lock, not its age
    return lock->tryLock() ? std::move(lock) : nullptr;
}

/// Removes the folders of instances that took a private name beside \a sharedPath and have not removed it.
void removeLeftOvers(const QString &sharedPath)
{
    const QFileInfo shared(sharedPath);
    const auto names =
        shared.dir().entryList({shared.fileName() + "-*"}, QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot);
    for (QString name : names) {
        if (name.endsWith(lockSuffix))
            name.chop(lockSuffix.size());
        const QString path = shared.dir().filePath(name);
        if (const auto lock = lockFolder(path))
            removeFolder(path);
    }
}

} // namespace

TemporaryFolder::TemporaryFolder(const QString &parentPath) : sharedPath(folderIn(parentPath))
{
    removeLeftOvers(sharedPath);
    if (!claim(sharedPath))
        claimPrivateName();
    remove();
}

bool TemporaryFolder::claim(const QString &path)
{
    auto free = lockFolder(path);
    if (!free)
        return false;
    lock = std::move(free);
    folderPath = path;
    return true;
}

void TemporaryFolder::claimPrivateName()
{
    constexpr int tries = 10; // somebody may have guessed the process id
    folderPath = sharedPath + '-' + QString::number(QCoreApplication::applicationPid());
    for (int i = 0; i < tries && !claim(folderPath); ++i)
        folderPath += '-';
}

QString TemporaryFolder::subFolder(const QString &baseName) const
{
    return folderPath + QDir::separator() + baseName;
}

QString TemporaryFolder::createSubFolder(const QString &baseName)
{
    if (!isOursToUse(folderPath))
        claimPrivateName(); // between two stages there is no folder, so somebody else may have made one
    makePrivateFolder(folderPath);
    QString path = subFolder(baseName);
    QDir().mkdir(path);
    return path;
}

void TemporaryFolder::remove()
{
    removeFolder(folderPath);
}

void TemporaryFolder::release()
{
    remove();
    lock.reset();
}
