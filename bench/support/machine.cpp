// SPDX-License-Identifier: MIT
#include "bench/support/machine.h"

#include <QFile>
#include <QSysInfo>
#include <QThread>

#include <cmath>

namespace bench
{

namespace
{

/// What stands behind the ":" of the first line of \a path that begins with \a key; empty when there is none.
QString entryOf(const QString &path, const QString &key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (const QString &line : lines) {
        if (line.startsWith(key))
            return line.section(':', 1).trimmed();
    }
    return {};
}

} // namespace

QString describeMachine()
{
    constexpr double kibiPerGibi = 1024.0 * 1024.0;
    const double memory = entryOf("/proc/meminfo", "MemTotal").section(' ', 0, 0).toDouble() / kibiPerGibi;
    return QString("%1, %2 cores, %3 GiB, %4, kernel %5, Qt %6")
        .arg(entryOf("/proc/cpuinfo", "model name"), QString::number(QThread::idealThreadCount()),
             QString::number(std::lround(memory)), QSysInfo::prettyProductName(), QSysInfo::kernelVersion(),
             QString(qVersion()));
}

} // namespace bench
