// SPDX-License-Identifier: MIT
#include <QByteArray>
#include <QCoreApplication>
#include <QProcess>
#include <QTextStream>

/// Runs the real timecode reader and turns 10:11:12:13 of its answer into 10:11:12:14.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QProcess reader;
    reader.start(REAL_READER, QCoreApplication::arguments().mid(1));
    reader.waitForFinished();
    QTextStream(stdout) << reader.readAllStandardOutput().replace("10:11:12:13", "10:11:12:14");
    return reader.exitCode();
}
