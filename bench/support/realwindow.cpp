// SPDX-License-Identifier: MIT
#include "bench/support/realwindow.h"

#include "app/applicationattributes.h"
#include "app/records/recordtypes.h"
#include "bench/support/program.h"

#include <QApplication>
#include <QDropEvent>
#include <QEventLoop>
#include <QMimeData>
#include <QUrl>

namespace bench
{

void prepareApplication()
{
    registerRecordTypes();
    setApplicationAttributes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

RealWindow::RealWindow(int interval)
{
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
        longest = qMax(longest, sinceBeat.nsecsElapsed());
        sinceBeat.start();
    });
    sinceBeat.start();
    timer.start(interval);
    window.show();
    giveTime(300); // until it is painted
    restartWatch();
}

void RealWindow::restartWatch()
{
    longest = 0;
    sinceBeat.start();
}

double RealWindow::longestBlock() const
{
    return static_cast<double>(qMax(longest, sinceBeat.nsecsElapsed())) * 1e-6;
}

void RealWindow::drop(const QString &path) const
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QWidget *viewport = table().viewport();
    const QPoint place = viewport->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &enter);
    QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &event);
}

void RealWindow::waitUntil(const std::function<bool()> &isDone, const QString &what)
{
    constexpr int patience = 600'000; // [ms]
    QElapsedTimer timer;
    timer.start();
    while (!isDone()) {
        if (timer.hasExpired(patience))
            throw Failure(what + " does not end");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void RealWindow::giveTime(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace bench
