// SPDX-License-Identifier: MIT
#include "app/applicationattributes.h"

#include "process/qtversion.h"

#include <QGuiApplication>

void setApplicationAttributes()
{
    qtversion::useHighDpi();
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    // Otherwise the first window loads OpenGL, which nothing here draws with. Its memory would be copied at
    // each start of a tool, which doubles its cost.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
}
