// SPDX-License-Identifier: MIT
#include "process/filenamecoding.h"

#include <QTextCodec>

void useUtf8FileNames()
{
#ifdef Q_OS_UNIX
    constexpr int utf8 = 106; // the registered number of the character set
    if (QTextCodec::codecForLocale()->mibEnum() != utf8)
        QTextCodec::setCodecForLocale(QTextCodec::codecForMib(utf8));
#endif
}
