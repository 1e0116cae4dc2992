// SPDX-License-Identifier: MIT
#include "bench/window/foreigntree.h"

#include "app/mainwindow.h"
#include "bench/support/benchmarkprogram.h"
#include "bench/support/droppeddata.h"
#include "bench/support/eventloopwatch.h"
#include "filelist/filelist.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

namespace bench
{

namespace
{

void makeTree(const QString &root, int files)
{
    constexpr int filesPerFolder = 100;
    QString folder;
    for (int i = 0; i < files; ++i) {
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

double milliseconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) * 1e-6;
}

} // namespace

ForeignTreeRun runForeignTree(int files)
{
    const QTemporaryDir folder;
    makeTree(folder.path(), files);
    auto window = std::make_unique<MainWindow>();
    window->show();
    QEventLoop loop;
    QTimer::singleShot(200, &loop, &QEventLoop::quit); // until it is painted
    loop.exec();

    ForeignTreeRun run;
    run.files = files;
    auto *table = window->findChild<FileList *>("fileList");
    EventLoopWatch watch;
    QElapsedTimer timer;
    timer.start();
    drop({folder.path()}, *table);
    if (table->viewport()->cursor().shape() != Qt::BusyCursor)
        throw Failure("the pointer does not answer a drop");
    QCoreApplication::processEvents(); // paints the table
    run.answerTime = milliseconds(timer);

    QTimer::singleShot(50, &loop, &QEventLoop::quit); // the walk is well under way
    loop.exec();
    run.longestBlock = watch.longestBlock();
    timer.start();
    window->close();
    window.reset();
    run.quitTime = milliseconds(timer) / 1000;
    return run;
}

} // namespace bench
