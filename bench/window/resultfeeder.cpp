// SPDX-License-Identifier: MIT
#include "bench/window/resultfeeder.h"

#include "control/probedrecord.h"

#include <QEventLoop>

namespace bench
{

ResultFeeder::ResultFeeder(const Shoot &shoot) : shoot(shoot), room(45)
{
    moveToThread(&thread);
    thread.start();
}

ResultFeeder::~ResultFeeder()
{
    thread.quit();
    thread.wait();
}

void ResultFeeder::feedProbeResults(int rows)
{
    feed(rows, "importing files...",
         [this](int row) { emit ffprobeResult(probedRecord(shoot.probe(row)), row, 0); });
}

void ResultFeeder::feedReaderResults(int rows)
{
    constexpr int notFound = 205;
    feed(rows, "reading audio TC...", [this](int row) {
        emit audioTCReadResult(shoot.readerResult(row), row, 0, shoot.hasTimecode(row) ? 0 : notFound);
    });
}

void ResultFeeder::feed(int rows, const QString &status, const std::function<void(int row)> &send)
{
    QEventLoop loop;
    connect(this, &ResultFeeder::fed, &loop, &QEventLoop::quit);
    QMetaObject::invokeMethod(this, [this, rows, status, send] {
        for (int row = 0; row < rows; ++row) {
            room.acquire();
            send(row);
            emit importProgress(row + 1, rows, status);
            QMetaObject::invokeMethod(
                &receiver, [this] { room.release(); }, Qt::QueuedConnection);
        }
        emit fed();
    });
    loop.exec();
}

} // namespace bench
