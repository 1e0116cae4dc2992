// SPDX-License-Identifier: MIT
#include "bench/support/program.h"
#include "bench/window/workbench.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <malloc.h>
#include <memory>

using namespace bench;

namespace
{

/// Puts tools into PATH that start and never end: the real controller starts as many as it may, and
/// everything else waits in its queues, until the benchmark's own results come.
void makeHangingTools(const QTemporaryDir &folder)
{
    for (const char *name : {"ffprobe.exe", "ffmpeg.exe", "LTCReader.exe"}) {
        QFile tool(folder.filePath(name));
        if (!tool.open(QIODevice::WriteOnly) || tool.write("#!/bin/sh\nexec sleep 3600\n") < 0 ||
            !tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            throw Failure(tool.fileName() + ": " + tool.errorString());
    }
    qputenv("PATH", QFile::encodeName(folder.path()) + QDir::listSeparator().toLatin1() + qgetenv("PATH"));
}

void makeForeignTree(const QString &root, quint64 files)
{
    constexpr quint64 filesPerFolder = 100;
    QString folder;
    for (quint64 i = 0; i < files; ++i) {
        if (i % filesPerFolder == 0) {
            folder = QString("%1/project%2/cache%3")
                         .arg(root)
                         .arg(i / (10 * filesPerFolder))
                         .arg(i / filesPerFolder);
            QDir().mkpath(folder);
        }
        QFile file(QString("%1/thumbnail%2.jpg").arg(folder).arg(i));
        if (!file.open(QIODevice::WriteOnly))
            throw Failure(file.fileName() + ": " + file.errorString());
    }
}

/// Drops a folder tree with \a files files that are no media on a window, and quits while it is walked.
void measureForeignTree(quint64 files)
{
    const QTemporaryDir folder;
    makeForeignTree(folder.path(), files);
    auto window = std::make_unique<RealWindow>(1);
    QElapsedTimer timer;
    const auto milliseconds = [&timer] { return static_cast<double>(timer.nsecsElapsed()) * 1e-6; };
    window->restartWatch();
    timer.start();
    window->drop(folder.path());
    if (window->table().viewport()->cursor().shape() != Qt::BusyCursor)
        throw Failure("the pointer does not answer a drop");
    QCoreApplication::processEvents(); // paints the table
    const double answerTime = milliseconds();

    RealWindow::giveTime(50); // the walk is well under way
    const double longestBlock = window->longestBlock();
    timer.start();
    window->window.close();
    window.reset();
    print("foreign", {{"files", static_cast<qint64>(files)},
                      {"answer_ms", answerTime},
                      {"block_ms", longestBlock},
                      {"quit_s", milliseconds() / 1000}});
}

} // namespace

int main(int argc, char *argv[])
{
    prepareApplication();
    const QApplication application(argc, argv);
    Program program(
        "window-benchmark",
        "Feeds the real window with results at full speed and measures what a row costs, how long the "
        "event loop is blocked, and the memory of a row.");
    program.addOption("rows", "Numbers of rows", "list", "1000,10000,50000");
    program.addOption("foreign", "Files of a folder tree without media; 0 leaves it out", "number", "100000");
    return program.run([&program] {
        const QVector<int> sizes = program.numbers("rows");
        const quint64 foreignFiles = program.number("foreign", 0);
        const QTemporaryDir tools;
        makeHangingTools(tools);
        program.printRun();
        for (int kind = 0; kind < Shoot::KindCount; ++kind) {
            for (const int rows : sizes) {
                malloc_trim(0); // otherwise each start of a tool would copy the traces of a large table
                Workbench(static_cast<Shoot::Kind>(kind), rows).run();
            }
        }
        if (foreignFiles > 0)
            measureForeignTree(foreignFiles);
        return 0;
    });
}
