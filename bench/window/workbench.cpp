// SPDX-License-Identifier: MIT
#include "bench/window/workbench.h"

#include "bench/support/program.h"
#include "bench/support/usage.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>

#include <malloc.h>

namespace bench
{

namespace
{

/// [bytes]
double heapInUse()
{
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// Lets everything that was posted, painting too, come to its end.
void settle()
{
    RealWindow::giveTime(100);
}

} // namespace

Workbench::Workbench(Shoot::Kind kind, int rows)
    : RealWindow(1), shoot(kind), shootName(Shoot::nameOf(kind)), rows(rows), feeder(shoot)
{
    for (int row = 0; row < rows; ++row) {
        QFile file(folder.filePath(shoot.fileName(row)));
        if (!file.open(QIODevice::WriteOnly) ||
            !file.setFileTime(shoot.modified(row), QFileDevice::FileModificationTime))
            throw Failure(file.fileName() + ": " + file.errorString());
    }
    connectFeeder();
    settle();
}

// The same connections as those of the controller; the window's own slots are private and go by their names.
void Workbench::connectFeeder()
{
    QObject::connect(&feeder, &ResultFeeder::ffprobeResult, &table(), &FileList::onFFProbeResult);
    QObject::connect(&feeder, &ResultFeeder::audioTCReadResult, &table(), &FileList::onAudioTCReadReturn);
    const char *progress = SIGNAL(importProgress(int,int,QString));
    QObject::connect(&feeder, progress, &window, SLOT(statusProgressUpdate(int,int,QString)));
    QObject::connect(&feeder, SIGNAL(importReady()), &window, SLOT(importReady()));
    QObject::connect(&feeder, &ResultFeeder::importReady, &table(), &FileList::importReady);
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
    print("step", {{"shoot", shootName},
                   {"rows", rows},
                   {"step", name},
                   {"time_s", time},
                   {"cpu_s", cpuTime}, // of the window's thread
                   {"block_ms", watch.longestBlock()}});
}

void Workbench::pressKey(int key, Qt::KeyboardModifiers modifiers) const
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&table(), &press);
}

void Workbench::selectEverySecondRow() const
{
    QItemSelection selection;
    for (int row = 0; row < table().rowCount(); row += 2)
        selection.append(QItemSelectionRange(table().model()->index(row, 0),
                                             table().model()->index(row, table().columnCount() - 1)));
    table().selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

double Workbench::jsonPerRow() const
{
    constexpr int samples = 1000;
    QVector<QJsonObject> kept;
    kept.reserve(samples);
    const double before = heapInUse();
    for (int row = 0; row < samples; ++row)
        kept += shoot.probe(row);
    return (heapInUse() - before) / samples;
}

void Workbench::run()
{
    const double json = jsonPerRow();
    const double heapBefore = heapInUse();
    measure("find", [this] {
        drop(folder.path());
        waitUntil([this] { return table().rowCount() == rows; }, "finding the files");
    });
    measure("probe", [this] { feeder.feedProbeResults(rows); });
    measure("read", [this] { feeder.feedReaderResults(rows); });
    print("memory", {{"shoot", shootName},
                     {"rows", rows},
                     {"bytes", (heapInUse() - heapBefore) / rows - json},
                     {"json_bytes", json}});
    emit feeder.importReady();
    measure("read again", [this] {
        AudioTCOptions options;
        options.allFiles = true;
        table().onAudioTCReadReq(options);
        feeder.feedReaderResults(rows);
    });
    emit feeder.readingFinished();
    measure("select all", [this] { pressKey(Qt::Key_A, Qt::ControlModifier); });
    selectEverySecondRow();
    measure("delete every second", [this] { pressKey(Qt::Key_Delete); });
    pressKey(Qt::Key_A, Qt::ControlModifier);
    measure("delete all", [this] { pressKey(Qt::Key_Delete); });
    if (table().rowCount() != 0)
        throw Failure("the rows were not deleted");
}

} // namespace bench
