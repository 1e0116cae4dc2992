// SPDX-License-Identifier: MIT
#include "app/records/filedata.h"

namespace FD
{

void FileData::setFileTC(const QString &text)
{
    fileTC = text;
    hasFileTC = true;
}

void FileData::setAudioTC(const QString &text, QPair<int, int> source)
{
    audioTC = text;
    audioStreamIndex = source.first;
    audioChannel = source.second;
    tcChannelLayout = streams.at(audioStreamIndex).toObject().value("channel_layout").toString();
}

void FileData::setLinkedAudioTC(int row, const QString &text, const QJsonObject &result)
{
    audioTC = text;
    linkedRow = row;
    audioTCResult = result;
    audioTCLinked = true;
    hasAudioTC = true;
}

void FileData::setTimeReference(qint64 samples, int sampleRate)
{
    timeReference = samples;
    const qint64 seconds = samples / sampleRate;
    const auto remainder = static_cast<double>(samples % sampleRate);
    const auto milliseconds = static_cast<int>(remainder / sampleRate * 1000.0);
    setFileTC(QString::asprintf("%02lld:%02lld:%02lld.%03d", seconds / 3600, seconds % 3600 / 60,
                                seconds % 60, milliseconds));
}

} // namespace FD
