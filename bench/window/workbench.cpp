// SPDX-License-Identifier: MIT
#include "bench/window/workbench.h"

#include "bench/support/program.h"
#include "bench/support/usage.h"
#include "control/probedrecord.h"

#include <QCoreApplication>
#include <QFile>
#include <QKeyEvent>
#include <QSemaphore>

#include <malloc.h>
#include <thread>

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

Workbench::Workbench(Shoot::Kind kind, int rows) : RealWindow(1), shoot{kind}, rows(rows)
{
    for (int row = 0; row < rows; ++row) {
        QFile file(folder.filePath(shoot.fileName(row)));
        if (!file.open(QIODevice::WriteOnly) ||
            !file.setFileTime(shoot.modified(row), QFileDevice::FileModificationTime))
            throw Failure(file.fileName() + ": " + file.errorString());
    }
    settle();
}

void Workbench::measure(const QString &name, const std::function<void()> &work)
{
    settle();
    QElapsedTimer timer;
    timer.start();
    const double cpuBefore = threadCpuTime();
    restartWatch();
    work();
    const double time = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    const double cpuTime = threadCpuTime() - cpuBefore;
    settle();
    print("step", {{"shoot", shoot.name()},
                   {"rows", rows},
                   {"step", name},
                   {"time_s", time},
                   {"cpu_s", cpuTime}, // of the window's thread
                   {"block_ms", longestBlock()}});
}

/// Has the window take results of all rows as the controller sends them, from another thread, as fast as they
/// are taken: at most 45 are under way, as many as child processes can end at one time. \a resultOf makes the
/// result of a row in that thread; the window's thread takes it.
void Workbench::feed(const QString &status, const std::function<std::function<void()>(int row)> &resultOf)
{
    QSemaphore room(45);
    QEventLoop loop;
    std::thread feeder([&] {
        for (int row = 0; row < rows; ++row) {
            room.acquire();
            QMetaObject::invokeMethod(&window, resultOf(row), Qt::QueuedConnection);
            QMetaObject::invokeMethod(&window, "statusProgressUpdate", Qt::QueuedConnection,
                                      Q_ARG(int, row + 1), Q_ARG(int, rows), Q_ARG(QString, status));
            QMetaObject::invokeMethod(
                &window, [&room] { room.release(); }, Qt::QueuedConnection);
        }
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    feeder.join();
}

void Workbench::feedProbeResults()
{
    feed("importing files...", [this](int row) {
        return [this, row, data = probedRecord(shoot.probe(row))] { table().onFFProbeResult(data, row, 0); };
    });
}

void Workbench::feedReaderResults()
{
    constexpr int notFound = 205;
    feed("reading audio TC...", [this](int row) {
        return [this, row, result = shoot.readerResult(row)] {
            table().onAudioTCReadReturn(result, row, 0, shoot.hasTimecode(row) ? 0 : notFound);
        };
    });
}

/// The window's own slots are private and go by their names.
void Workbench::callSlot(const char *name)
{
    if (!QMetaObject::invokeMethod(&window, name))
        throw Failure(QString("the window has no slot ") + name);
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
    measure("probe", [this] { feedProbeResults(); });
    measure("read", [this] { feedReaderResults(); });
    print("memory", {{"shoot", shoot.name()},
                     {"rows", rows},
                     {"bytes", (heapInUse() - heapBefore) / rows - json},
                     {"json_bytes", json}});
    callSlot("importReady");
    table().importReady();
    measure("read again", [this] {
        AudioTCOptions options;
        options.allFiles = true;
        table().onAudioTCReadReq(options);
        feedReaderResults();
    });
    callSlot("readingFinished");
    measure("select all", [this] { pressKey(Qt::Key_A, Qt::ControlModifier); });
    selectEverySecondRow();
    measure("delete every second", [this] { pressKey(Qt::Key_Delete); });
    pressKey(Qt::Key_A, Qt::ControlModifier);
    measure("delete all", [this] { pressKey(Qt::Key_Delete); });
    if (table().rowCount() != 0)
        throw Failure("the rows were not deleted");
}

} // namespace bench
