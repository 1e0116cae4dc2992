// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QFile>
#include <QFileInfo>

/// Records with what the linking of siblings looks at, for its tests.
namespace linkedfile
{

/// When most files of these tests were modified.
inline QDateTime noon()
{
    return {QDate(2024, 5, 4), QTime(12, 0)};
}

/// A file of \a duration [s] whose name ends in \a suffix.
inline FileData file(const QString &suffix, double duration, const QDateTime &modified = noon())
{
    FileData record;
    record.suffix = suffix;
    record.duration = duration;
    record.lastModified = modified;
    return record;
}

/// Makes the empty file \a path, modified \a secondsLater after noon().
inline QFileInfo empty(const QString &path, int secondsLater)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setFileTime(noon().addSecs(secondsLater), QFileDevice::FileModificationTime))
        qFatal("cannot write %s", qPrintable(path));
    return QFileInfo(path);
}

} // namespace linkedfile
