// SPDX-License-Identifier: MIT
#include "tests/export-matrix/judge.h"

#include "tests/export-matrix/channelcheck.h"
#include "tests/export-matrix/toolrun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace exportmatrix
{
namespace
{

/// Collects differences.
class Faults
{
public:
    template <typename Value>
    void compare(const QString &what, const Value &found, const Value &wanted)
    {
        if (found != wanted)
            texts += QString("%1 is %2, not %3")
                         .arg(what, QVariant(found).toString(), QVariant(wanted).toString());
    }
    void require(const QString &fault, bool isRight)
    {
        if (!isRight)
            texts += fault;
    }
    QStringList texts;
};

QJsonObject probeOf(const QString &path)
{
    const ToolRun run = runTool("ffprobe", {"-v", "error", "-count_packets", "-print_format", "json",
                                            "-show_format", "-show_streams", path});
    return QJsonDocument::fromJson(run.output).object();
}

QVector<QJsonObject> streamsOf(const QJsonArray &streams, const QString &type)
{
    QVector<QJsonObject> found;
    for (const QJsonValue stream : streams) {
        if (stream.toObject()["codec_type"] == type)
            found += stream.toObject();
    }
    return found;
}

double startOf(const QJsonObject &stream)
{
    return stream["start_time"].toString().toDouble();
}

void judgePicture(Faults &faults, const QJsonArray &streams, const Expectation &expected)
{
    const QVector<QJsonObject> pictures = streamsOf(streams, "video");
    faults.compare("number of pictures", pictures.size(), expected.pictureCodec.isEmpty() ? 0 : 1);
    if (pictures.size() != 1 || expected.pictureCodec.isEmpty())
        return;
    const QJsonObject &picture = pictures.first();
    faults.compare("picture codec", picture["codec_name"].toString(), expected.pictureCodec);
    faults.compare("pixel format", picture["pix_fmt"].toString(), expected.pixelFormat);
    faults.compare("width", picture["width"].toInt(), expected.width);
    faults.compare("height", picture["height"].toInt(), expected.height);
    faults.compare("picture rate", picture["avg_frame_rate"].toString(), expected.pictureRate);
    faults.compare("number of frames", picture["nb_read_packets"].toString().toInt(), expected.frames);
}

void judgeSound(Faults &faults, const QString &path, const QJsonArray &streams, const Expectation &expected,
                const MadeFile &source)
{
    const QVector<QJsonObject> found = streamsOf(streams, "audio");
    faults.compare("number of audio streams", found.size(), expected.tracks.size());
    if (found.size() != expected.tracks.size())
        return;
    for (int i = 0; i < found.size(); ++i) {
        const ExpectedTrack &track = expected.tracks.at(i);
        const QString what = QString("audio %1").arg(i);
        faults.compare(what + " codec", found.at(i)["codec_name"].toString(), track.codec);
        faults.compare(what + " sample rate", found.at(i)["sample_rate"].toString().toInt(),
                       track.sampleRate);
        const int channels = found.at(i)["channels"].toInt();
        faults.compare(what + " channels", channels, track.channels.size());
        if (channels == track.channels.size())
            faults.texts += channelFaults(path, i, track, source);
    }
}

/// The sound must lie where it lay beside the picture.
void judgeSync(Faults &faults, const QJsonArray &streams, const QJsonArray &sourceStreams)
{
    constexpr double tolerance = 0.03; // [s]; MPEG audio cannot lie closer
    const QVector<QJsonObject> pictures = streamsOf(streams, "video");
    const QVector<QJsonObject> sounds = streamsOf(streams, "audio");
    const QVector<QJsonObject> sourcePictures = streamsOf(sourceStreams, "video");
    const QVector<QJsonObject> sourceSounds = streamsOf(sourceStreams, "audio");
    if (pictures.isEmpty() || sounds.isEmpty() || sourcePictures.isEmpty() || sourceSounds.isEmpty())
        return;
    const double offset = startOf(sounds.first()) - startOf(pictures.first());
    const double sourceOffset = startOf(sourceSounds.first()) - startOf(sourcePictures.first());
    faults.require(
        QString("sound starts %1 s after the picture, in the source %2 s").arg(offset).arg(sourceOffset),
        std::abs(offset - sourceOffset) <= tolerance);
    faults.require(QString("picture starts at %1 s").arg(startOf(pictures.first())),
                   std::abs(startOf(pictures.first())) <= tolerance + std::abs(sourceOffset));
}

void judgeTimecode(Faults &faults, const QJsonObject &probe, const Expectation &expected,
                   const FileData &record)
{
    const QJsonObject tags = probe["format"].toObject()["tags"].toObject();
    if (expected.timecode && !expected.timecode->isEmpty()) {
        QStringList texts;
        for (const QJsonValue stream : probe["streams"].toArray()) {
            const QString text = stream.toObject()["tags"].toObject()["timecode"].toString();
            if (!text.isEmpty())
                texts += text;
        }
        if (tags.contains("timecode"))
            texts += tags["timecode"].toString();
        faults.require("no start timecode", !texts.isEmpty());
        for (const QString &text : texts)
            faults.compare("start timecode", text, *expected.timecode);
    }
    if (expected.timeReference) {
        faults.compare("time reference", tags["time_reference"].toString(),
                       QString::number(*expected.timeReference));
        faults.compare("comment", tags["comment"].toString(), expected.comment);
    }
    if (!record.hasAudioTC && record.suffix.compare("mxf", Qt::CaseInsensitive) != 0 && !expected.timecode)
        faults.compare("kept time reference", tags["time_reference"].toString(),
                       record.format["tags"].toObject()["time_reference"].toString());
}

QJsonArray mediainfoOf(const QString &path)
{
    const ToolRun run = runTool("mediainfo", {"--Output=JSON", path});
    return QJsonDocument::fromJson(run.output).object()["media"].toObject()["track"].toArray();
}

QVector<QJsonObject> tracksOf(const QJsonArray &tracks, const QString &type)
{
    QVector<QJsonObject> found;
    for (const QJsonValue track : tracks) {
        if (track.toObject()["@type"] == type)
            found += track.toObject();
    }
    return found;
}

/// The same once more, as a program tells it that shares no code with the tool that wrote the file.
void judgeWithMediainfo(Faults &faults, const QString &path, const Expectation &expected)
{
    const QJsonArray tracks = mediainfoOf(path);
    const QVector<QJsonObject> sounds = tracksOf(tracks, "Audio");
    faults.compare("mediainfo: number of audio streams", sounds.size(), expected.tracks.size());
    for (int i = 0; i < sounds.size() && i < expected.tracks.size(); ++i)
        faults.compare("mediainfo: channels", sounds.at(i)["Channels"].toString().toInt(),
                       expected.tracks.at(i).channels.size());
    if (expected.timeReference && !sounds.isEmpty()) {
        const double seconds = double(*expected.timeReference) / expected.tracks.first().sampleRate;
        faults.require("mediainfo: starts at " + sounds.first()["Delay"].toString() + " s",
                       std::abs(sounds.first()["Delay"].toString().toDouble() - seconds) < 1e-6 * seconds);
    }
    if (expected.pictureCodec.isEmpty())
        return;
    const QVector<QJsonObject> pictures = tracksOf(tracks, "Video");
    faults.compare("mediainfo: number of pictures", pictures.size(), 1);
    faults.compare("mediainfo: number of frames", pictures.value(0)["FrameCount"].toString().toInt(),
                   expected.frames);
    if (!expected.timecode || expected.timecode->isEmpty())
        return;
    const QVector<QJsonObject> others = tracksOf(tracks, "Other");
    faults.require("mediainfo: no timecode track", !others.isEmpty());
    for (const QJsonObject &other : others)
        faults.compare("mediainfo: timecode track", other["TimeCode_FirstFrame"].toString(),
                       *expected.timecode);
}

} // namespace

QStringList faultsOf(const QString &path, const Expectation &expected, const MadeFile &source)
{
    Faults faults;
    const QJsonObject probe = probeOf(path);
    const QJsonArray streams = probe["streams"].toArray();
    judgePicture(faults, streams, expected);
    judgeSound(faults, path, streams, expected, source);
    judgeSync(faults, streams, source.record.streams);
    judgeTimecode(faults, probe, expected, source.record);
    judgeWithMediainfo(faults, path, expected);
    return faults.texts;
}

} // namespace exportmatrix
