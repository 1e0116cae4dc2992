// SPDX-License-Identifier: MIT
#include "ffmpeg/toolarguments.h"

#include <QDir>

namespace toolarguments
{

namespace
{
constexpr int extractedSeconds = 3; // [s] holds several whole timecode frames at every frame rate
}

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
    const QString firstPart = file.fileName.section('.', 0, 0);
    return targetFolder + QDir::separator() + firstPart + '_' + QString::number(stream) + '_' +
           QString::number(file.rowNumber) + ".wav";
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
