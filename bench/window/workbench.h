// SPDX-License-Identifier: MIT
#pragma once

#include "bench/support/realwindow.h"
#include "bench/window/resultfeeder.h"

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
    void connectFeeder();
    void measure(const QString &name, const std::function<void()> &work);
    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void selectEverySecondRow() const;
    double jsonPerRow() const;

    Shoot shoot;
    QString shootName;
    int rows;
    QTemporaryDir folder;
    ResultFeeder feeder;
};

} // namespace bench
