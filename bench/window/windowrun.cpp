// SPDX-License-Identifier: MIT
#include "bench/window/windowrun.h"

#include "app/mainwindow.h"
#include "bench/support/benchmarkprogram.h"
#include "bench/support/droppeddata.h"
#include "bench/support/eventloopwatch.h"
#include "bench/support/processusage.h"
#include "bench/window/resultfeeder.h"
#include "filelist/filelist.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QKeyEvent>
#include <QTemporaryDir>

#include <functional>

namespace bench
{

namespace
{

constexpr int patience = 600'000; // [ms]

/// The window, a shoot on disk and the results that the shoot's tools would give.
class Workbench
{
public:
    Workbench(Shoot::Kind kind, int rows) : shoot(kind), rows(rows), feeder(shoot)
    {
        makeFiles();
        window.show();
        fileList = window.findChild<FileList *>("fileList");
        connectFeeder();
        settle();
    }

    WindowRun run();

private:
    void makeFiles() const;
    void connectFeeder();
    void measure(const QString &name, const std::function<void()> &work);
    void settle() const;
    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void findFiles() const;
    void selectEverySecondRow() const;
    double jsonPerRow() const;

    Shoot shoot;
    int rows;
    QTemporaryDir folder;
    MainWindow window;
    ResultFeeder feeder;
    EventLoopWatch watch;
    FileList *fileList = nullptr;
    WindowRun result;
};

void Workbench::makeFiles() const
{
    for (int row = 0; row < rows; ++row) {
        QFile file(folder.filePath(shoot.fileName(row)));
        if (!file.open(QIODevice::WriteOnly) ||
            !file.setFileTime(shoot.modified(row), QFileDevice::FileModificationTime))
            throw Failure(file.fileName() + ": " + file.errorString());
    }
}

// The same connections as those of the controller; the window's own slots are private and go by their names.
void Workbench::connectFeeder()
{
    QObject::connect(&feeder, &ResultFeeder::ffprobeResult, fileList, &FileList::onFFProbeResult);
    QObject::connect(&feeder, &ResultFeeder::audioTCReadResult, fileList, &FileList::onAudioTCReadReturn);
    const char *progress = SIGNAL(importProgress(int,int,QString));
    QObject::connect(&feeder, progress, &window, SLOT(statusProgressUpdate(int,int,QString)));
    QObject::connect(&feeder, SIGNAL(importReady()), &window, SLOT(importReady()));
    QObject::connect(&feeder, &ResultFeeder::importReady, fileList, &FileList::importReady);
    QObject::connect(&feeder, SIGNAL(readingFinished()), &window, SLOT(readingFinished()));
}

void Workbench::measure(const QString &name, const std::function<void()> &work)
{
    settle();
    QElapsedTimer timer;
    timer.start();
    const double cpuBefore = threadCpuTime();
    watch.restart();
    work();
    const double time = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    const double cpuTime = threadCpuTime() - cpuBefore;
    settle();
    result.steps += Step{name, time, cpuTime, watch.longestBlock()};
}

/// Lets everything that was posted, painting too, come to its end.
void Workbench::settle() const
{
    constexpr int time = 100; // [ms]
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void Workbench::pressKey(int key, Qt::KeyboardModifiers modifiers) const
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(fileList, &press);
}

void Workbench::findFiles() const
{
    QEventLoop loop;
    QObject::connect(fileList->model(), &QAbstractItemModel::rowsInserted, &loop, [&] {
        if (fileList->rowCount() == rows)
            loop.quit();
    });
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    drop({folder.path()}, *fileList);
    loop.exec();
    if (fileList->rowCount() != rows)
        throw Failure("the files did not come into the table");
}

void Workbench::selectEverySecondRow() const
{
    QItemSelection selection;
    for (int row = 0; row < fileList->rowCount(); row += 2)
        selection.append(QItemSelectionRange(fileList->model()->index(row, 0),
                                             fileList->model()->index(row, fileList->columnCount() - 1)));
    fileList->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

double Workbench::jsonPerRow() const
{
    constexpr int samples = 1000;
    QVector<QJsonObject> kept;
    kept.reserve(samples);
    const qint64 before = heapInUse();
    for (int row = 0; row < samples; ++row)
        kept += QJsonDocument::fromJson(shoot.probeText(row)).object();
    return static_cast<double>(heapInUse() - before) / samples;
}

WindowRun Workbench::run()
{
    result.rows = rows;
    result.probeJsonPerRow = jsonPerRow();
    const qint64 heapBefore = heapInUse();
    measure("find", [this] { findFiles(); });
    measure("probe", [this] { feeder.feedProbeResults(rows); });
    measure("read", [this] { feeder.feedReaderResults(rows); });
    result.memoryPerRow = static_cast<double>(heapInUse() - heapBefore) / rows - result.probeJsonPerRow;
    emit feeder.importReady();
    measure("read again", [this] {
        AudioTCOptions options;
        options.allFiles = true;
        fileList->onAudioTCReadReq(options);
        feeder.feedReaderResults(rows);
    });
    emit feeder.readingFinished();
    measure("select all", [this] { pressKey(Qt::Key_A, Qt::ControlModifier); });
    selectEverySecondRow();
    measure("delete every second", [this] { pressKey(Qt::Key_Delete); });
    pressKey(Qt::Key_A, Qt::ControlModifier);
    measure("delete all", [this] { pressKey(Qt::Key_Delete); });
    if (fileList->rowCount() != 0)
        throw Failure("the rows were not deleted");
    return result;
}

} // namespace

WindowRun runWindow(Shoot::Kind kind, int rows)
{
    releaseFreeMemory();
    return Workbench(kind, rows).run();
}

} // namespace bench
