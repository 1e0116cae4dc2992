// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFile>

/// Whether a process has \a word in its command line; one that only waits for its parent to notice its end
/// has none any more.
inline bool isProcessRunningWith(const QByteArray &word)
{
    const QStringList processes = QDir("/proc").entryList({"[1-9]*"}, QDir::Dirs);
    for (const QString &process : processes) {
        QFile commandLine("/proc/" + process + "/cmdline");
        if (commandLine.open(QIODevice::ReadOnly) && commandLine.readAll().contains(word))
            return true;
    }
    return false;
}
