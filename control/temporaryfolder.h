// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QLockFile>
#include <QString>

#include <memory>

/// The folder into which audio is extracted, with one sub-folder for each source file's base name.
///
/// Private to this user and to this instance of the program: a lock file next to the folder shows other
/// instances that it is taken. Where the folder is taken, is another user's or is a link, its name gets "-"
/// and the process id appended. What instances have left that ended without removing theirs, the next
/// removes.
class TemporaryFolder
{
public:
    /// Claims the folder in \a parentPath and removes what an earlier run has left in it.
    explicit TemporaryFolder(const QString &parentPath = QDir::tempPath());

    /// Absolute path with native separators. The folder exists only after createSubFolder().
    QString path() const { return folderPath; }

    /// Path of the sub-folder for source files of the name \a baseName.
    QString subFolder(const QString &baseName) const;

    /// Makes the sub-folder, and the folder, where they are missing. Returns subFolder(). Where they cannot
    /// be made, nothing can be written there and the extraction fails.
    QString createSubFolder(const QString &baseName);

    /// Removes the folder with all its contents, but nothing that a link in it points to. Does nothing after
    /// release().
    void remove();

    /// Removes the folder and frees its name. Does nothing when called again.
    void release();

private:
    bool claim(const QString &path);
    void claimPrivateName();

    QString sharedPath; ///< the name without a process id
    QString folderPath;
    std::unique_ptr<QLockFile> lock; ///< of folderPath; null = the folder is not ours
};
