// SPDX-License-Identifier: MIT
#include "testkit/faketools/onlytools.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

OnlyTools::OnlyTools(const QMap<QString, QString> &tools) : searchPath(qgetenv("PATH"))
{
    for (auto tool = tools.cbegin(); tool != tools.cend(); ++tool) {
        const QString program = QStandardPaths::findExecutable(tool.value());
        if (program.isEmpty() || !QFile::link(program, folder.filePath(tool.key())))
            qFatal("no program %s", qPrintable(tool.value()));
    }
    qputenv("PATH", QFile::encodeName(folder.path()));
}

OnlyTools::~OnlyTools()
{
    qputenv("PATH", searchPath);
}

QMap<QString, QString> realMediaTools()
{
    return {{"ffprobe.exe", "ffprobe"}, {"ffmpeg.exe", "ffmpeg"}, {"LTCReader.exe", "LTCReader.exe"}};
}

void makeMedia(const QString &path, const QStringList &source)
{
    QProcess tool;
    tool.start("ffmpeg", QStringList{"-v", "error", "-f", "lavfi", "-i"} + source + QStringList{"-y", path});
    if (!tool.waitForFinished() || tool.exitCode() != 0)
        qFatal("ffmpeg: %s", tool.readAllStandardError().constData());
}

void makeTone(const QString &path)
{
    makeMedia(path, {"sine=duration=10:sample_rate=48000", "-c:a", "pcm_s16le"});
}
