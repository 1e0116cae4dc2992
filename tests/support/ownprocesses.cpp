// SPDX-License-Identifier: MIT
#include "tests/support/ownprocesses.h"

#include <QDir>
#include <QFile>

namespace ownprocesses
{

namespace
{

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

QVector<qint64> children()
{
    QVector<qint64> ids;
    const QStringList threads = entriesOf("/proc/self/task");
    for (const QString &thread : threads) {
        const QList<QByteArray> words = contentOf("/proc/self/task/" + thread + "/children").split(' ');
        for (const QByteArray &word : words) {
            if (!word.trimmed().isEmpty())
                ids += word.toLongLong();
        }
    }
    return ids;
}

QString nameOf(qint64 id)
{
    return QString::fromUtf8(contentOf(QString("/proc/%1/comm").arg(id)).trimmed());
}

int openFiles()
{
    return static_cast<int>(entriesOf("/proc/self/fd").size());
}

qint64 residentMemory()
{
    const QList<QByteArray> lines = contentOf("/proc/self/status").split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.simplified().split(' ').value(1).toLongLong();
    }
    return 0;
}

} // namespace ownprocesses
