// SPDX-License-Identifier: MIT
#pragma once

#include "app/mainwindow.h"
#include "filelist/filelist.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

namespace bench
{

/// Prepares what the program prepares before there is an application object. The application does not end
/// with its last window.
void prepareApplication();

/// The real main window, shown, used from outside, and watched for how long its event loop leaves everything
/// else waiting.
///
/// A timer beats at a steady pace. Between two beats the loop was in one round of slots and paintings, or
/// waited; a key that is pressed in that time is answered after it. What slots take is so measured from
/// outside of them.
class RealWindow
{
public:
    /// Beats every \a interval milliseconds. A beat takes some microseconds, and no shorter block is
    /// reported.
    explicit RealWindow(int interval);

    /// Begins a new measurement of blocks.
    void restartWatch();

    /// The longest time between two beats since restartWatch(), and up to now [ms].
    double longestBlock() const;

    /// Drops the folder \a path on the table, as the desktop would.
    void drop(const QString &path) const;

    /// Serves the event loop until \a isDone. Throws Failure when that takes too long: \a what does not end.
    static void waitUntil(const std::function<bool()> &isDone, const QString &what);

    /// Serves the event loop for a while [ms].
    static void giveTime(int milliseconds);

    FileList &table() const { return *window.findChild<FileList *>("fileList"); }

    MainWindow window;

private:
    QTimer timer;
    QElapsedTimer sinceBeat;
    qint64 longest = 0; ///< [ns]
};

} // namespace bench
