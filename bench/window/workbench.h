// SPDX-License-Identifier: MIT
#pragma once

#include "bench/support/realwindow.h"
#include "bench/window/shoot.h"

#include <QTemporaryDir>

#include <functional>

namespace bench
{

/// The window, a shoot on disk and the results that the shoot's tools would give.
class Workbench : private RealWindow
{
public:
    /// Makes \a rows files of \a kind. Throws Failure.
    Workbench(Shoot::Kind kind, int rows);

    /// Imports the files, reads them again, selects and deletes them; prints what each step has cost. Throws
    /// Failure.
    void run();

private:
    void measure(const QString &name, const std::function<void()> &work);
    void feed(const QString &status, const std::function<std::function<void()>(int row)> &resultOf);
    void feedProbeResults();
    void feedReaderResults();
    void callSlot(const char *name);
    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void selectEverySecondRow() const;
    double jsonPerRow() const;

    Shoot shoot;
    int rows;
    QTemporaryDir folder;
};

} // namespace bench
