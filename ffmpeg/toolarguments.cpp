// SPDX-License-Identifier: MIT
#include "ffmpeg/toolarguments.h"

#include <QDir>
#include <QFile>

namespace toolarguments
{

namespace
{

constexpr int extractedSeconds = 3; // [s] holds several whole timecode frames at every frame rate
constexpr int longestName = 255;    // [bytes] on the usual file systems

/// The beginning of \a name that takes at most \a bytes on the disk.
QString shortened(QString name, qsizetype bytes)
{
    while (QFile::encodeName(name).size() > bytes)
        name.chop(name.at(name.size() - 1).isLowSurrogate() ? 2 : 1);
    return name;
}

} // namespace

QStringList probe(const QString &mediaPath)
{
    return {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", mediaPath};
}

QVector<int> audioStreams(const FileData &file)
{
    QVector<int> indexes;
    for (const char index : file.audioStreamMap)
        indexes += static_cast<uchar>(index);
    return indexes;
}

QString extractedPath(const FileData &file, const QString &targetFolder, int stream)
{
    const QString origin = '_' + QString::number(stream) + '_' + QString::number(file.rowNumber) + ".wav";
    const QString firstPart = shortened(file.fileName.section('.', 0, 0), longestName - origin.size());
    return targetFolder + QDir::separator() + firstPart + origin;
}

QStringList audioExtraction(const FileData &file, const QString &targetFolder)
{
    QStringList arguments{"-y", "-guess_layout_max", "0"};
    if (file.duration >= extractedSeconds)
        arguments += {"-ss", "0", "-i", file.absoluteFilePath, "-t", QString::number(extractedSeconds)};
    else
        arguments += {"-i", file.absoluteFilePath};

    const QVector<int> streams = audioStreams(file);
    for (const int stream : streams)
        arguments += {"-map", "0:" + QString::number(stream), extractedPath(file, targetFolder, stream)};
    return arguments;
}

} // namespace toolarguments
