// SPDX-License-Identifier: MIT
#include "bench/realtools/mediafolder.h"

#include "bench/support/program.h"
#include "testkit/media/mediamaker.h"

#include <QDir>
#include <QFileInfo>

#include <filesystem>

namespace bench
{

MediaFolder::MediaFolder()
{
    constexpr double seconds = 5.0;
    const mediakit::Channel tone = mediakit::toneChannel(440.0);
    const mediakit::Channel timecode = mediakit::timecodeChannel({10, 0, 0, 0}, {});
    const QVector<mediakit::Recording> recordings{
        mediakit::soundFile("mono.wav", {timecode}, seconds),
        mediakit::soundFile("eight.wav", {tone, tone, tone, tone, tone, tone, tone, timecode}, seconds),
        mediakit::movie("camera.mov", "25", "pcm_s16le", {{tone, timecode}}),
        mediakit::movie("camera.mxf", "25", "pcm_s16le", {{tone}, {tone}, {tone}, {timecode}})};
    const QString problem = mediakit::makeAll(recordings, root.path());
    if (!problem.isEmpty())
        throw Failure(problem);
    for (const mediakit::Recording &recording : recordings)
        originals += recording.path;
}

QString MediaFolder::folderWith(int count)
{
    const QDir folder(root.filePath(QString("day-of-%1").arg(count)));
    if (folder.exists())
        return folder.path();
    QDir().mkpath(folder.path());
    for (int i = 0; i < count; ++i) {
        const QString original = originals.at(i % kinds);
        const QString name = QString("A%1.%2").arg(i, 5, 10, QChar('0')).arg(QFileInfo(original).suffix());
        std::filesystem::create_hard_link(root.filePath(original).toStdString(),
                                          folder.filePath(name).toStdString());
    }
    return folder.path();
}

QStringList MediaFolder::filesIn(const QString &folder)
{
    QStringList paths;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files)
        paths += file.absoluteFilePath();
    return paths;
}

} // namespace bench
