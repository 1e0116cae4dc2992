// SPDX-License-Identifier: MIT
#include "ffmpeg/outputname.h"

#include <QFileInfo>

namespace outputname
{

namespace
{

constexpr int lastNumber = 9999;
constexpr int passThrough = 0;
constexpr int lastMxf = 4;
constexpr int lastQuickTime = 8;

QString extension(const QString &inputPath, Container container)
{
    switch (container) {
    case Container::Mxf:
        return ".MXF";
    case Container::QuickTime:
        return ".MOV";
    case Container::BroadcastWave:
        return ".WAV";
    case Container::AsInput:
        break;
    }
    return '.' + QFileInfo(inputPath).suffix();
}

} // namespace

bool hasSuffix(const QString &mediaPath, const QString &suffix)
{
    return QFileInfo(mediaPath).suffix().compare(suffix, Qt::CaseInsensitive) == 0;
}

Container containerFor(const QString &inputPath, int videoType)
{
    if (hasSuffix(inputPath, "wav"))
        return Container::BroadcastWave;
    if (videoType > passThrough && videoType <= lastMxf)
        return Container::Mxf;
    if (videoType > lastMxf && videoType <= lastQuickTime)
        return Container::QuickTime;
    // Camera containers that cannot hold a start timecode
    const bool needsQuickTime = hasSuffix(inputPath, "mts") || hasSuffix(inputPath, "mp4");
    return needsQuickTime && videoType == passThrough ? Container::QuickTime : Container::AsInput;
}

QString choose(const QString &inputPath, const QString &folder, Container container,
               const std::function<bool(const QString &)> &isTaken)
{
    const QString stem = folder + '/' + QFileInfo(inputPath).completeBaseName();
    const QString ext = extension(inputPath, container);
    QString candidate = stem + ext;
    for (int number = 1; number <= lastNumber && isTaken(candidate); ++number)
        candidate = stem + '_' + QString::number(number) + ext;
    return candidate;
}

} // namespace outputname
