// SPDX-License-Identifier: MIT
#include "control/pacedwalk.h"

#include <QElapsedTimer>
#include <QTimerEvent>

namespace
{

// The walk through a huge tree hands the thread back after each slice, so that exports, cancelling and
// quitting are served meanwhile. A small drop is walked in one go.
constexpr int sliceEntries = 256; // at least, files and folders
constexpr int sliceTime = 20;     // [ms], at least

// Files are found many times faster than the table takes them, and while it takes what has piled up its
// window does not answer. So the walk waits until a probe was asked for each file found, but not for ever,
// and then for a moment more, in which the window answers.
constexpr int sliceFiles = 128;    // at most, while a probe was not asked for each of them
constexpr int longestPause = 100;  // [ms]
constexpr int pauseAfterSlice = 1; // [ms]

} // namespace

PacedWalk::PacedWalk(QObject *parent) : QObject(parent)
{
}

void PacedWalk::add(const QList<QUrl> &urls)
{
    const bool isWalking = !files.atEnd();
    files.add(urls);
    if (!isWalking)
        walkOn();
}

void PacedWalk::takeRequest()
{
    if (unaskedFiles > 0)
        --unaskedFiles;
    if (unaskedFiles == 0 && pause.isActive())
        pause.start(pauseAfterSlice, Qt::PreciseTimer, this);
}

void PacedWalk::stop()
{
    files = {};
    pause.stop();
    forgetRequests();
}

void PacedWalk::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == pause.timerId())
        walkOn();
    else
        QObject::timerEvent(event);
}

void PacedWalk::walkOn()
{
    pause.stop();
    QElapsedTimer slice;
    slice.start();
    int found = 0;
    for (int entries = 0; !files.atEnd(); ++entries) {
        if (found >= sliceFiles && isAwaitingRequests()) {
            pause.start(longestPause, this);
            return;
        }
        if (entries >= sliceEntries && slice.hasExpired(sliceTime)) {
            QMetaObject::invokeMethod(this, &PacedWalk::walkOn, Qt::QueuedConnection);
            return;
        }
        if (const auto file = files.step()) {
            ++found;
            ++unaskedFiles;
            emit fileFound(*file);
        }
    }
    emit ended();
}
