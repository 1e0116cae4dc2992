// SPDX-License-Identifier: MIT
#include "bench/window/hangingtools.h"

#include "bench/support/benchmarkprogram.h"

#include <QDir>
#include <QFile>

namespace bench
{

HangingTools::HangingTools()
{
    for (const char *name : {"ffprobe.exe", "ffmpeg.exe", "LTCReader.exe"}) {
        QFile tool(folder.filePath(name));
        const bool isWritten =
            tool.open(QIODevice::WriteOnly) && tool.write("#!/bin/sh\nexec sleep 3600\n") > 0;
        if (!isWritten || !tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            throw Failure(tool.fileName() + ": " + tool.errorString());
    }
    qputenv("PATH", QFile::encodeName(folder.path()) + QDir::listSeparator().toLatin1() + qgetenv("PATH"));
}

} // namespace bench
