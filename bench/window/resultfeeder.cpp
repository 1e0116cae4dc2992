// SPDX-License-Identifier: MIT
#include "bench/window/resultfeeder.h"

#include <QEventLoop>

namespace bench
{

namespace
{

constexpr int mostUnderWay = 45;
constexpr int found = 0;
constexpr int notFound = 205;

} // namespace

ResultFeeder::ResultFeeder(const Shoot &shoot) : shoot(shoot), room(mostUnderWay)
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
    feed(rows, "importing files...", &ResultFeeder::sendProbeResult);
}

void ResultFeeder::feedReaderResults(int rows)
{
    feed(rows, "reading audio TC...", &ResultFeeder::sendReaderResult);
}

void ResultFeeder::feed(int rows, const QString &status, void (ResultFeeder::*send)(int))
{
    QEventLoop loop;
    connect(this, &ResultFeeder::fed, &loop, &QEventLoop::quit);
    QMetaObject::invokeMethod(this, [this, rows, status, send] {
        for (int row = 0; row < rows; ++row) {
            room.acquire();
            (this->*send)(row);
            emit importProgress(row + 1, rows, status);
            QMetaObject::invokeMethod(
                &receiver, [this] { room.release(); }, Qt::QueuedConnection);
        }
        emit fed();
    });
    loop.exec();
}

void ResultFeeder::sendProbeResult(int row)
{
    emit ffprobeResult(shoot.probed(row), row, found);
}

void ResultFeeder::sendReaderResult(int row)
{
    emit audioTCReadResult(shoot.readerResult(row), row, 0, shoot.hasTimecode(row) ? found : notFound);
}

} // namespace bench
