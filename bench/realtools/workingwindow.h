// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "bench/support/realwindow.h"

namespace bench
{

/// The real main window, used as a person does.
class WorkingWindow : public RealWindow
{
public:
    WorkingWindow() : RealWindow(10) {} // more beats would count as work of the program

    /// Drops \a folder and returns when all of it has been imported. Throws Failure.
    void import(const QString &folder);

    /// Exports all files and returns when the window shows the result. Throws Failure when a file failed.
    void exportAll(const ExportOptions &options);

    /// The longest time for which the event loop answered nothing during the last work [ms].
    double longestBlock() const { return longest; }

private:
    double longest = 0.0; ///< [ms]
};

} // namespace bench
