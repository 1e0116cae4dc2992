// SPDX-License-Identifier: MIT
#pragma once

#include "app/mainwindow.h"
#include "bench/support/eventloopwatch.h"
#include "filelist/filelist.h"

namespace bench
{

/// Prepares what the program prepares before there is an application object. The application does not end
/// with its last window.
void prepareApplication();

/// The real main window, shown, used from outside and watched.
class RealWindow
{
public:
    /// The watch beats every \a interval milliseconds.
    explicit RealWindow(int interval);

    /// Drops the folder \a path on the table, as the desktop would.
    void drop(const QString &path) const;

    /// Serves the event loop until \a isDone. Throws Failure when that takes too long: \a what does not end.
    static void waitUntil(const std::function<bool()> &isDone, const QString &what);

    /// Serves the event loop for a while [ms].
    static void giveTime(int milliseconds);

    FileList &table() const { return *window.findChild<FileList *>("fileList"); }

    MainWindow window;
    EventLoopWatch watch;
};

} // namespace bench
