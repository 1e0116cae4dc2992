// SPDX-License-Identifier: MIT
#include "ffmpeg/exporthints.h"

#include "ffmpeg/audiomapping.h"
#include "ffmpeg/videocodec.h"
#include "timecode/timecode.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QVariant>

namespace exporthints
{

namespace
{

constexpr int longestDescription = 120'000; // [bytes]; the system takes 131,072

QString line(const QByteArray &key, const QJsonValue &value)
{
    const QString text = value.toVariant().toString().simplified(); // the end of a line ends the fact
    return text.isEmpty() ? QString() : QString::fromUtf8(key) + '=' + text + '\n';
}

QString streamLines(int index, const QJsonObject &stream)
{
    QString lines = line("index", index);
    for (const char *key :
         {"codec_type", "codec_name", "channels", "sample_rate", "channel_layout", "r_frame_rate",
          "avg_frame_rate", "start_time", "duration", "width", "height", "sample_aspect_ratio", "pix_fmt",
          "color_range", "color_space", "color_primaries", "field_order", "bit_rate"})
        lines += line(key, stream[QLatin1String(key)]);
    const QJsonArray sideDataList = stream["side_data_list"].toArray();
    for (const QJsonValue &sideData : sideDataList)
        lines += line("rotation", sideData.toObject()["rotation"]);
    lines += line("DISPOSITION:attached_pic", stream["disposition"].toObject()["attached_pic"]);
    for (const char *tag : {"timecode", "reel_name", "rotate"})
        lines += line(QByteArray("TAG:") + tag, stream["tags"].toObject()[QLatin1String(tag)]);
    return lines;
}

void set(QProcessEnvironment &environment, const QString &variable, const QString &value)
{
    environment.remove(variable);
    if (!value.isEmpty())
        environment.insert(variable, value);
}

} // namespace

QString mutedChannel(const FileData &file, const ExportOptions &options)
{
    if (!options.muteAudioTC || file.audioStreamIndex < 0 || file.audioChannel < 0)
        return {};
    return QString("%1.%2").arg(file.audioStreamIndex).arg(file.audioChannel);
}

QString timecodeRate(const FileData &file)
{
    const int baseRate = file.audioTCResult["FrameRateBaseFound"].toInt();
    if (!file.hasAudioTC || baseRate <= 0)
        return {};
    return QString::fromStdString(timecode::fraction(baseRate, file.audioTCResult["NTSC"].toBool()));
}

QString pictureChoice(const ExportOptions &options)
{
    return videocodec::nameOf(options.videoType);
}

QString soundChoice(const ExportOptions &options)
{
    if (options.audioType == 0)
        return "pass";
    return audiomapping::codecOf(options.audioType) == "pcm_s24le" ? "pcm24" : "pcm16";
}

QString timecodeSampleRate(const FileData &file)
{
    const int rate = file.audioTCResult["SampleRate"].toInt();
    return file.hasAudioTC && rate > 0 ? QString::number(rate) : QString();
}

QString sourceDescription(const FileData &file)
{
    if (file.streams.isEmpty())
        return {};
    QString text;
    for (int i = 0; i < file.streams.size(); ++i)
        text += streamLines(i, file.streams.at(i).toObject());
    text += "[FORMAT]\n" + line("start_time", file.format["start_time"]) +
            line("duration", file.format["duration"]);
    const QJsonObject tags = file.format["tags"].toObject();
    const auto isTold = [](const QString &key) { return key == "timecode" || key == "creation_time"; };
    // Of the other notes, only their names matter.
    for (auto tag = tags.begin(); tag != tags.end(); ++tag)
        text += line("TAG:" + tag.key().simplified().toUtf8(),
                     isTold(tag.key()) ? tag.value() : QJsonValue("..."));
    return text.toUtf8().size() <= longestDescription ? text : QString();
}

void insertSource(QProcessEnvironment &environment, const FileData &file)
{
    set(environment, "OSTREL_SOURCE", sourceDescription(file));
}

void insertInto(QProcessEnvironment &environment, const FileData &file, const ExportOptions &options,
                int batchSize)
{
    set(environment, "OSTREL_TIMECODE_CHANNEL", mutedChannel(file, options));
    set(environment, "OSTREL_TIMECODE_RATE", timecodeRate(file));
    set(environment, "OSTREL_TIMECODE_SAMPLE_RATE", timecodeSampleRate(file));
    set(environment, "OSTREL_PICTURE", pictureChoice(options));
    set(environment, "OSTREL_SOUND", soundChoice(options));
    set(environment, "OSTREL_BATCH_SIZE", batchSize > 0 ? QString::number(batchSize) : QString());
    insertSource(environment, file);
}

} // namespace exporthints
