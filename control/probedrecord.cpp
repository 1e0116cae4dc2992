// SPDX-License-Identifier: MIT
#include "control/probedrecord.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QtMath>

#include <limits>
#include <utility>

namespace
{

bool isSameText(const QJsonValue &value, const QString &text)
{
    return value.toString().compare(text, Qt::CaseInsensitive) == 0;
}

bool isPresent(const QJsonValue &value)
{
    return !value.isUndefined() && !value.isNull();
}

bool isAudio(const QJsonObject &stream)
{
    return isSameText(stream.value("codec_type"), QCoreApplication::translate("MainControl", "audio"));
}

void addAudioStream(FileData &file, int index, const QJsonObject &stream)
{
    file.audioStreams += stream;
    if (index <= std::numeric_limits<uchar>::max()) // in a byte, a higher one would become another stream's
        file.audioStreamMap += static_cast<char>(index);
}

void readWave(FileData &file)
{
    int sampleRate = 0;
    qint64 channels = 0;
    for (int i = 0; i < file.streams.size(); ++i) {
        const QJsonObject stream = file.streams.at(i).toObject();
        if (!isAudio(stream))
            continue;
        addAudioStream(file, i, stream);
        const QJsonValue rate = stream.value("sample_rate");
        if (isPresent(rate))
            sampleRate = rate.toString().toInt();
        channels += stream.value("channels").toInt();
    }

    constexpr qint64 mostChannels = std::numeric_limits<int>::max();
    file.audioChannelCount = static_cast<int>(qBound(qint64{0}, channels, mostChannels));

    const QJsonObject tags = file.format.value("tags").toObject();
    const qint64 timeReference = tags.value("time_reference").toString().toLongLong();
    if (sampleRate > 0 && timeReference > 0)
        file.setTimeReference(timeReference, sampleRate);
}

void readFileTimecode(FileData &file)
{
    const QJsonValue timecode = file.format.value("tags").toObject().value("timecode");
    if (isPresent(timecode)) {
        file.setFileTC(timecode.toString());
        return;
    }
    for (const QJsonValue &value : std::as_const(file.streams)) {
        const QJsonObject stream = value.toObject();
        if (isSameText(stream.value("codec_tag_string"), QCoreApplication::translate("MainControl", "tmcd")))
            file.setFileTC(stream.value("tags").toObject().value("timecode").toString());
    }
}

void readMovie(FileData &file)
{
    readFileTimecode(file);
    for (int i = 0; i < file.streams.size(); ++i) {
        const QJsonObject stream = file.streams.at(i).toObject();
        if (isAudio(stream))
            addAudioStream(file, i, stream);
        const QString encoder = stream.value("tags").toObject().value("encoder").toString();
        if (encoder.contains("GoPro", Qt::CaseInsensitive))
            file.isGoPro = true;
        if (isSameText(stream.value("codec_type"), QCoreApplication::translate("MainControl", "video")))
            file.mainStream = stream;
    }
}

} // namespace

FileData probedRecord(const QJsonObject &probeJson)
{
    FileData file;
    file.format = probeJson.value("format").toObject();
    file.streams = probeJson.value("streams").toArray();
    if (isSameText(file.format.value("format_name"), "wav"))
        readWave(file);
    else
        readMovie(file);

    const double duration = file.format.value("duration").toString().toDouble();
    file.duration = qIsFinite(duration) ? duration : 0.0;
    return file;
}
