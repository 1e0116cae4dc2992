// SPDX-License-Identifier: MIT
#include "bench/support/windowapplication.h"

#include "app/applicationattributes.h"
#include "app/records/recordtypes.h"

namespace bench
{

WindowApplication::Preparation::Preparation()
{
    registerRecordTypes();
    setApplicationAttributes();
}

WindowApplication::WindowApplication(int &argc, char **argv) : application(argc, argv)
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

} // namespace bench
