// SPDX-License-Identifier: MIT
#include "ffmpeg/audiomapping.h"

#include "app/records/optiontables.h"
#include "ffmpeg/toolarguments.h"

#include <algorithm>
#include <functional>

namespace audiomapping
{

namespace
{

using outputname::Container;

constexpr int keepCodec = 0; // audio types
constexpr int pcm24Bit = 2;
constexpr int rankOf24Bit = 1;
constexpr int rankOf16Bit = 3;

using CodecChoice = std::function<QString(const QJsonObject &audioStream)>;

QJsonObject streamAt(const FileData &file, int index)
{
    return file.streams.at(index).toObject();
}

/// Bounded, because the file can claim any number, and each channel becomes an argument.
int channelsOf(const QJsonObject &audioStream)
{
    constexpr int mostChannels = 512; // the tools take no more
    return std::clamp(audioStream["channels"].toInt(), 0, mostChannels);
}

/// Codec of the stream that the tool itself would choose: most channels, the first of equals.
QStringList codecOfWidestStream(const FileData &file, const QString &otherwise)
{
    QJsonObject widest;
    const QVector<int> indexes = toolarguments::audioStreams(file);
    for (const int index : indexes) {
        const QJsonObject stream = streamAt(file, index);
        if (widest.isEmpty() || channelsOf(stream) > channelsOf(widest))
            widest = stream;
    }
    return widest.isEmpty() ? QStringList() : QStringList{"-acodec", keptCodec(widest, otherwise)};
}

QStringList withTimecodeChannel(const FileData &file, const ExportOptions &options, Container container)
{
    const bool isWave = container == Container::BroadcastWave;
    const QStringList wave = isWave ? QStringList{"-write_bext", "1"} : QStringList();
    if (options.audioType != keepCodec)
        return wave + QStringList{"-acodec", codecOf(options.audioType)};
    return wave + codecOfWidestStream(file, isWave ? "pcm_s24le" : audioCodecRank.key(0));
}

/// Maps one channel of the timecode stream after the other, all but the timecode's own.
QStringList channelsOfWave(const FileData &file, int stream)
{
    QStringList arguments;
    for (int channel = 0; channel < channelsOf(streamAt(file, stream)); ++channel) {
        if (channel != file.audioChannel)
            arguments += {"-map_channel", QString("0.%1.%2:0.0").arg(stream).arg(channel)};
    }
    return arguments;
}

QStringList channelsOfVideo(const FileData &file, const Channel &left)
{
    QStringList arguments{"-map_channel", QString("-0.%1.%2").arg(left.stream).arg(left.channel)};
    int target = 0;
    for (int channel = 0; channel < channelsOf(streamAt(file, left.stream)); ++channel) {
        if (channel != left.channel)
            arguments +=
                {"-map_channel", QString("0.%1.%2:0.%3").arg(left.stream).arg(channel).arg(target++)};
    }
    return arguments;
}

/// All audio streams but a single-channel one that holds nothing but the timecode.
QStringList streamsWithoutTimecode(const FileData &file, Container container, const CodecChoice &codec)
{
    const Channel left = singledOut(file);
    const QVector<int> indexes = toolarguments::audioStreams(file);
    QStringList arguments;
    for (const int index : indexes) {
        const QJsonObject stream = streamAt(file, index);
        const bool holdsTimecode = index == left.stream;
        if (holdsTimecode && channelsOf(stream) <= 1)
            continue;

        arguments += {"-map", "0:" + QString::number(index)};
        if (holdsTimecode)
            arguments += container == Container::BroadcastWave ? channelsOfWave(file, index)
                                                               : channelsOfVideo(file, left);
        arguments += {"-acodec", codec(stream)};
    }
    return arguments;
}

QStringList withoutTimecodeChannel(const FileData &file, const ExportOptions &options, Container container)
{
    const int audioType = options.audioType;
    if (container == Container::Mxf) {
        // From MXF to MXF all sound is taken over as it is, the timecode with it.
        if (outputname::hasSuffix(file.absoluteFilePath, "mxf"))
            return {};
        QString codec = audioType == pcm24Bit ? "pcm_s24le" : "pcm_s16le";
        return QStringList{"-map", "0:v", "-map", "-0:d"} +
               streamsWithoutTimecode(file, container, [&codec](const QJsonObject &) { return codec; });
    }

    QStringList arguments{"-map", "0:v"};
    if (container == Container::BroadcastWave)
        arguments = QStringList{"-write_bext", "1"};
    else if (file.hasAudioTC)
        arguments += {"-map_metadata", "-1"}; // an old start timecode must not come along

    return arguments + streamsWithoutTimecode(file, container, [audioType](const QJsonObject &stream) {
               return audioType == keepCodec ? keptCodec(stream, audioCodecRank.key(0)) : codecOf(audioType);
           });
}

} // namespace

Channel singledOut(const FileData &file)
{
    const QJsonObject stream = streamAt(file, file.audioStreamIndex);
    const bool isStereo = file.tcChannelLayout.compare("stereo", Qt::CaseInsensitive) == 0;
    const bool isBigEndianPair = channelsOf(stream) == 2 && stream["codec_name"].toString().contains("be");
    if (isStereo || isBigEndianPair)
        return {file.audioStreamIndex, file.audioChannel == 0 ? 1 : 0};
    return {file.audioStreamIndex, file.audioChannel};
}

QString codecOf(int audioType)
{
    return audioCodecRank.key(audioType == pcm24Bit ? rankOf24Bit : rankOf16Bit);
}

QString keptCodec(const QJsonObject &audioStream, const QString &otherwise)
{
    const QString name = audioStream["codec_name"].toString();
    return audioCodecRank.contains(name) ? name : otherwise;
}

QStringList arguments(const FileData &file, const ExportOptions &options, Container container)
{
    return options.muteAudioTC ? withoutTimecodeChannel(file, options, container)
                               : withTimecodeChannel(file, options, container);
}

} // namespace audiomapping
