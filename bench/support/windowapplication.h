// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>

namespace bench
{

/// The application of a benchmark that shows the program's windows: set up like the program's own, and not at
/// its end when the last window closes.
class WindowApplication
{
public:
    WindowApplication(int &argc, char **argv);

private:
    struct Preparation {
        Preparation();
    };

    Preparation preparation; ///< what has to be done before there is an application
    QApplication application;
};

} // namespace bench
