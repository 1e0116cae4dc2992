// SPDX-License-Identifier: MIT
#include "filelist/celltexts.h"

#include "app/records/jsonnumbers.h"
#include "ltc/readererrors.h"
#include "timecode/timecode.h"

#include <QCoreApplication>
#include <QStringList>

#include <cmath>

namespace celltexts
{

namespace
{

constexpr double longestDuration = 1e15; // [s] beyond it a double no longer counts seconds

QString translated(const char *text)
{
    return QCoreApplication::translate("FileList", text);
}

/// Channels are counted from 1 where people read them.
qint64 channelNumber(const QJsonObject &result)
{
    return qint64{result.value("ChannelFound").toInt()} + 1;
}

QStringList readerLines(const QJsonObject &result)
{
    const bool ntsc = result.value("NTSC").toBool();
    const QString rate = QString::number(frameRate(result), 'f', ntsc ? 3 : 2);
    const bool dropFrame = ntsc && result.value("DropFrame").toBool();
    const qint64 samples = wholeNumber(result.value("SamplesSinceMidnight"));
    return {
        translated("Frame rate: %1 fps").arg(rate),
        dropFrame ? translated("Drop-frame: yes") : translated("Drop-frame: no"),
        translated("Channel: %1").arg(channelNumber(result)),
        translated("Samples since midnight: %1").arg(samples),
    };
}

} // namespace

QString duration(double seconds)
{
    if (!std::isfinite(seconds) || std::abs(seconds) > longestDuration)
        seconds = 0.0;
    // The default rounding mode of the processor takes halves to the even neighbour.
    const auto whole = static_cast<long long>(std::nearbyint(seconds));
    return QString::asprintf("%.2lld:%.2lld:%.2lld", whole / 3600, whole % 3600 / 60, whole % 60);
}

double frameRate(const QJsonObject &result)
{
    const double found = result.value("FrameRateFound").toDouble();
    return result.value("NTSC").toBool() ? timecode::ntscSpeed(found) : found;
}

QString audioTimecode(const QJsonObject &result)
{
    const bool dropFrame = result.value("NTSC").toBool() && result.value("DropFrame").toBool();
    return result.value("Timecode").toString() + '@' + QString::number(frameRate(result), 'f', 2) +
           (dropFrame ? " DF " : "") + " on ch. " + QString::number(channelNumber(result));
}

QString linkedTimecode(const QString &timecode)
{
    return timecode + "@(linked)";
}

QString audioTimecodeToolTip(const FileData &file)
{
    QStringList lines = readerLines(file.audioTCResult);
    lines.insert(2, translated("Stream: %1").arg(file.audioStreamIndex));
    return lines.join('\n');
}

QString linkedTimecodeToolTip(const QJsonObject &result, const QString &source)
{
    QStringList lines = readerLines(result);
    lines.prepend(translated("Linked to: %1").arg(source));
    return lines.join('\n');
}

QString keptTimecodeToolTip(const QString &timecode)
{
    return translated("kept for export: ") + timecode;
}

QString fileTC(const FileData &file, const RowStatus &status, const QString &initText)
{
    switch (status.fileTC) {
    case RowStatus::FileTC::Unprobed:
        return initText;
    case RowStatus::FileTC::Found:
        return file.fileTC;
    case RowStatus::FileTC::NotFound:
        break;
    }
    return translated("file TC not found");
}

QString audioTC(const FileData &file, const RowStatus &status, const QString &initText)
{
    switch (status.audioTC) {
    case RowStatus::AudioTC::Unread:
        return initText;
    case RowStatus::AudioTC::Found:
        return audioTimecode(file.audioTCResult);
    case RowStatus::AudioTC::Linked:
        return linkedTimecode(file.audioTC);
    case RowStatus::AudioTC::NotFound:
        return translated("audio TC not found");
    case RowStatus::AudioTC::ReadFailed:
    case RowStatus::AudioTC::ProbeFailed:
        break;
    }
    return readerErrorText(status.exitCode);
}

QString audioTCToolTip(const FileData &file, const RowStatus &status)
{
    if (status.audioTC == RowStatus::AudioTC::Found)
        return audioTimecodeToolTip(file);
    if (status.audioTC == RowStatus::AudioTC::Linked)
        return linkedTimecodeToolTip(file.audioTCResult, status.sourceName);
    if (status.audioTC == RowStatus::AudioTC::ReadFailed && file.hasAudioTC)
        return keptTimecodeToolTip(file.audioTC);
    return {};
}

} // namespace celltexts
