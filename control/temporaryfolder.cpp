// SPDX-License-Identifier: MIT
#include "control/temporaryfolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace
{

const QLatin1String lockSuffix(".lock");
constexpr int mostPrivateNames = 10; // of one process; another user may have guessed its id

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

/// The names that instances take next to the folder \a sharedName.
QRegularExpression privateNames(const QString &sharedName)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(sharedName) + QString("-[1-9][0-9]{0,9}-{0,%1}").arg(mostPrivateNames)));
}

/// Removes the folders of instances that took a private name next to \a sharedPath and have not removed it.
/// Anything else that only begins like it is someone else's.
void removeLeftOvers(const QString &sharedPath)
{
    const QFileInfo shared(sharedPath);
    const QRegularExpression privateName = privateNames(shared.fileName());
    const auto names =
        shared.dir().entryList({shared.fileName() + "-*"}, QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot);
    for (QString name : names) {
        if (name.endsWith(lockSuffix))
            name.chop(lockSuffix.size());
        if (!privateName.match(name).hasMatch())
            continue;
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
    lock.reset();
    folderPath = sharedPath + '-' + QString::number(QCoreApplication::applicationPid());
    for (int i = 0; i < mostPrivateNames && !claim(folderPath); ++i)
        folderPath += '-';
}

QString TemporaryFolder::subFolder(const QString &baseName) const
{
    return folderPath + QDir::separator() + baseName;
}

QString TemporaryFolder::createSubFolder(const QString &baseName)
{
    if (!lock || !isOursToUse(folderPath))
        claimPrivateName(); // between two stages there is no folder, so someone else may have made one
    if (lock)
        makePrivateFolder(folderPath);
    QString path = subFolder(baseName);
    QDir().mkdir(path);
    return path;
}

void TemporaryFolder::remove()
{
    if (lock) // otherwise it is another instance's by now
        removeFolder(folderPath);
}

void TemporaryFolder::release()
{
    remove();
    lock.reset();
}
