// SPDX-License-Identifier: MIT
#include "process/filenamecoding.h"

#include "process/qtversion.h"

void useUtf8FileNames()
{
#ifdef Q_OS_UNIX
    constexpr int utf8 = 106; // the registered number of the character set
    qtversion::useFileNameCoding(utf8);
#endif
}
