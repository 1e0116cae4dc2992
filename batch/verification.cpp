// SPDX-License-Identifier: MIT
#include "batch/verification.h"

#include "app/records/jsonnumbers.h"
#include "batch/framecount.h"
#include "ffmpeg/outputname.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace verification
{

namespace
{

constexpr int firstMxfType = 1;
constexpr int lastMxfType = 4;
constexpr int quickTimePassThrough = 5;
constexpr double toleratedSeconds = 0.1; // headers round, and coders pad the last block

QJsonObject streamOf(const FileData &file, int index)
{
    return file.streams.at(index).toObject();
}

QVector<QJsonObject> streamsOf(const QJsonObject &probe, const QString &type)
{
    QVector<QJsonObject> streams;
    const QJsonArray all = probe["streams"].toArray();
    for (const QJsonValue &stream : all) {
        const bool isCover = stream.toObject()["disposition"].toObject()["attached_pic"].toInt() == 1;
        if (stream.toObject()["codec_type"] == type && !isCover)
            streams += stream.toObject();
    }
    return streams;
}

double seconds(const QJsonValue &value)
{
    return value.toString().toDouble();
}

/// The depth of whole-number PCM [bits]; 0 for other sound.
int pcmDepth(const QJsonObject &stream)
{
    const QString codec = stream["codec_name"].toString();
    const bool isWhole = codec.startsWith("pcm_s") || codec.startsWith("pcm_u");
    return isWhole ? stream["bits_per_sample"].toInt() : 0;
}

framecount::Rate soundRate(const FileData &file)
{
    return {file.audioTCResult["FrameRateBaseFound"].toInt(), file.audioTCResult["NTSC"].toBool(),
            file.audioTC.contains(';')};
}

/// Channels are left out one by one; a stream that is nothing but the timecode goes as a whole.
QVector<Sound> soundsOf(const FileData &file, const ExportOptions &options)
{
    const bool isCodedAsMxf = options.videoType >= firstMxfType && options.videoType <= lastMxfType;
    const bool staysAudible = isCodedAsMxf && outputname::hasSuffix(file.absoluteFilePath, "mxf");
    const bool isMuted = options.muteAudioTC && !staysAudible && file.audioChannel >= 0;
    QVector<Sound> sounds;
    for (const char entry : file.audioStreamMap) {
        Sound sound;
        sound.stream = static_cast<unsigned char>(entry);
        sound.kept.resize(streamOf(file, sound.stream)["channels"].toInt());
        std::iota(sound.kept.begin(), sound.kept.end(), 0);
        sound.isWhole = !isMuted || sound.stream != file.audioStreamIndex;
        if (!sound.isWhole)
            sound.kept.removeAll(file.audioChannel);
        if (!sound.kept.isEmpty())
            sounds += sound;
    }
    return sounds;
}

int pictureOf(const FileData &file)
{
    for (int i = 0; i < file.streams.size(); ++i) {
        const QJsonObject stream = streamOf(file, i);
        if (stream["codec_type"] == "video" && stream["disposition"].toObject()["attached_pic"].toInt() != 1)
            return i;
    }
    return -1;
}

qint64 timeReferenceOf(const FileData &file)
{
    const qint64 samples = wholeNumber(file.audioTCResult["SamplesSinceMidnight"]);
    const int countedRate = file.audioTCResult["SampleRate"].toInt();
    const QJsonObject stream = streamOf(file, static_cast<unsigned char>(file.audioStreamMap.at(0)));
    const int ownRate = stream["sample_rate"].toString().toInt();
    if (countedRate <= 0 || countedRate == ownRate)
        return samples;
    return std::llround(static_cast<double>(samples) * ownRate / countedRate);
}

/// So many samples that the longer of both is shorter: what one has more than the other must be silence.
qint64 paddedLength(const QJsonObject &first, const QJsonObject &second, double duration)
{
    constexpr double margin = 1.0; // [s]
    const double longest = std::max({seconds(first["duration"]), seconds(second["duration"]), duration});
    return static_cast<qint64>((longest + margin) * first["sample_rate"].toString().toInt());
}

QString padding(qint64 samples)
{
    return "apad=whole_len=" + QString::number(samples);
}

/// A filter that keeps channels as they are, in a new order.
QString keeping(const QVector<int> &channels)
{
    QString filter = QString("pan=%1c").arg(channels.size());
    for (int i = 0; i < channels.size(); ++i)
        filter += QString("|c%1=c%2").arg(i).arg(channels.at(i));
    return filter;
}

QStringList pictureArguments(const QString &map, PictureCheck check)
{
    if (check == PictureCheck::None)
        return {};
    const QStringList codec = check == PictureCheck::Decoded
                                  ? QStringList{"-c:v", "rawvideo", "-vsync", "passthrough"}
                                  : QStringList{"-c:v", "copy"};
    return QStringList{"-map", map} + codec + QStringList{"-f", "framehash", "-hash", "md5", "pipe:1"};
}

QStringList wholeList(const QString &path, const QStringList &picture, const QStringList &sound)
{
    if (picture.isEmpty() && sound.isEmpty())
        return {};
    QStringList arguments{"-v", "quiet", "-nostdin", "-i", path};
    arguments += picture;
    if (!sound.isEmpty())
        arguments +=
            sound + QStringList{"-c:a", "pcm_s32le", "-f", "streamhash", "-hash", "sha256", "pipe:2"};
    return arguments;
}

/// Whether the frames come at a steady rate, so that a coder writes as many as there are.
bool isSteady(const QJsonObject &picture)
{
    const auto base = framecount::pictureRate(picture["r_frame_rate"].toString());
    const auto average = framecount::pictureRate(picture["avg_frame_rate"].toString());
    const bool isField = base && average && base->base == 2 * average->base && base->ntsc == average->ntsc;
    return base && average && (isField || (base->base == average->base && base->ntsc == average->ntsc));
}

QString faultInStart(const QString &who, const QString &found, const QString &expected)
{
    return QString("%1 reads the start \"%2\" instead of %3").arg(who, found, expected);
}

QStringList startFaults(const QString &expected, const QJsonObject &probe, const QByteArray &mediainfo,
                        bool isWave)
{
    QStringList faults;
    if (expected.isEmpty())
        return faults;
    if (startIn(probe) != expected)
        faults += faultInStart("ffprobe", startIn(probe), expected);
    const QStringList others = isWave ? QStringList() : startsInMediainfo(mediainfo);
    for (const QString &start : others) {
        if (start != expected) {
            faults += faultInStart("mediainfo", start, expected);
            break;
        }
    }
    if (!mediainfo.isEmpty() && !isWave && others.isEmpty() && !streamsOf(probe, "video").isEmpty())
        faults += faultInStart("mediainfo", {}, expected);
    return faults;
}

QStringList pictureFaults(const FileData &file, const Expectation &expected, const QJsonObject &probe,
                          const Contents &source, const Contents &written)
{
    const PictureCheck check = pictureCheck(file, expected, probe);
    if (expected.picture >= 0 && streamsOf(probe, "video").isEmpty())
        return {"the picture is missing"};
    if (check == PictureCheck::None)
        return {};
    if (written.frames == 0)
        return {"the picture cannot be read"};
    const bool counts = check != PictureCheck::Count || isSteady(streamOf(file, expected.picture));
    if (counts && written.frames != source.frames)
        return {QString("%1 frames instead of %2").arg(written.frames).arg(source.frames)};
    if (check != PictureCheck::Count && written.picture != source.picture)
        return {"frames are not the source's"};
    return {};
}

QStringList soundFaults(const FileData &file, const Expectation &expected, const QJsonObject &probe,
                        const Contents &source, const Contents &written)
{
    const QVector<QJsonObject> sounds = streamsOf(probe, "audio");
    if (sounds.size() != expected.sounds.size())
        return {QString("%1 audio streams instead of %2").arg(sounds.size()).arg(expected.sounds.size())};
    QStringList faults;
    bool isCompared = false;
    for (int i = 0; i < sounds.size(); ++i) {
        const Sound &sound = expected.sounds.at(i);
        const QJsonObject original = streamOf(file, sound.stream);
        const int channels = sounds.at(i)["channels"].toInt();
        if (channels != sound.kept.size()) {
            faults += QString("%1 channels instead of %2 in audio stream %3")
                          .arg(channels)
                          .arg(sound.kept.size())
                          .arg(i + 1);
        }
        if (seconds(sounds.at(i)["duration"]) < seconds(original["duration"]) - toleratedSeconds)
            faults += QString("audio stream %1 is too short").arg(i + 1);
        isCompared = isCompared || areSamplesKept(file, expected, i, probe);
    }
    if (faults.isEmpty() && isCompared && (source.sounds.isEmpty() || source.sounds != written.sounds))
        faults += "samples are not the source's";
    return faults;
}

} // namespace

Expectation expectationOf(const FileData &file, const ExportOptions &options)
{
    Expectation expected;
    expected.isWave = outputname::hasSuffix(file.absoluteFilePath, "wav");
    expected.picture = expected.isWave ? -1 : pictureOf(file);
    expected.isPictureCopied = options.videoType == 0 || options.videoType == quickTimePassThrough;
    expected.sounds = soundsOf(file, options);
    if (expected.isWave && file.hasAudioTC && !file.audioStreamMap.isEmpty())
        expected.timeReference = timeReferenceOf(file);
    return expected;
}

PictureCheck pictureCheck(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe)
{
    const QVector<QJsonObject> pictures = streamsOf(writtenProbe, "video");
    if (expected.picture < 0 || pictures.isEmpty())
        return PictureCheck::None;
    if (!expected.isPictureCopied)
        return PictureCheck::Count;
    const QJsonObject original = streamOf(file, expected.picture);
    const QString codec = original["codec_name"].toString();
    const bool hasTwoForms = codec == "h264" || codec == "hevc";
    const bool isOfQuickTime = original["codec_tag_string"].toString().size() == 4 &&
                               !original["codec_tag_string"].toString().startsWith('[');
    const bool isQuickTime = !pictures.first()["codec_tag_string"].toString().startsWith('[');
    return hasTwoForms && isOfQuickTime != isQuickTime ? PictureCheck::Decoded : PictureCheck::Copy;
}

bool areSamplesKept(const FileData &file, const Expectation &expected, int i, const QJsonObject &writtenProbe)
{
    const QJsonObject written = streamsOf(writtenProbe, "audio").value(i);
    const QJsonObject original = streamOf(file, expected.sounds.at(i).stream);
    if (written["sample_rate"] != original["sample_rate"])
        return false;
    // Sound that begins later than the picture is filled up in some containers.
    const double begin = seconds(original["start_time"]) - seconds(file.format["start_time"]);
    constexpr double oneSample = 1e-5; // [s] and less
    if (begin > oneSample)
        return false;
    const int depth = pcmDepth(original);
    const bool isDeepEnough = depth > 0 && pcmDepth(written) >= depth;
    const bool isPcm = original["codec_name"].toString().startsWith("pcm_");
    return isDeepEnough || (isPcm && original["codec_name"] == written["codec_name"]);
}

QStringList sourceArguments(const FileData &file, const Expectation &expected,
                            const QJsonObject &writtenProbe)
{
    const QStringList picture = pictureArguments("0:" + QString::number(expected.picture),
                                                 pictureCheck(file, expected, writtenProbe));
    QStringList sound;
    int output = 0;
    for (int i = 0; i < expected.sounds.size(); ++i) {
        if (!areSamplesKept(file, expected, i, writtenProbe))
            continue;
        const Sound &kept = expected.sounds.at(i);
        const QString padded = padding(paddedLength(
            streamOf(file, kept.stream), streamsOf(writtenProbe, "audio").value(i), file.duration));
        sound += {"-map", "0:" + QString::number(kept.stream), "-filter:a:" + QString::number(output),
                  kept.isWhole ? padded : keeping(kept.kept) + ',' + padded};
        ++output;
    }
    return wholeList(file.absoluteFilePath, picture, sound);
}

QStringList writtenArguments(const QString &path, const FileData &file, const Expectation &expected,
                             const QJsonObject &writtenProbe)
{
    const QString picture = QString::number(streamsOf(writtenProbe, "video").value(0)["index"].toInt());
    const QVector<QJsonObject> sounds = streamsOf(writtenProbe, "audio");
    QStringList sound;
    int output = 0;
    for (int i = 0; i < expected.sounds.size(); ++i) {
        if (!areSamplesKept(file, expected, i, writtenProbe))
            continue;
        const QJsonObject original = streamOf(file, expected.sounds.at(i).stream);
        sound += {"-map", "0:" + QString::number(sounds.at(i)["index"].toInt()),
                  "-filter:a:" + QString::number(output),
                  padding(paddedLength(original, sounds.at(i), file.duration))};
        ++output;
    }
    return wholeList(path, pictureArguments("0:" + picture, pictureCheck(file, expected, writtenProbe)),
                     sound);
}

void FrameDigest::add(const QByteArray &piece)
{
    rest += piece;
    int begin = 0;
    for (auto end = rest.indexOf('\n'); end >= 0; end = rest.indexOf('\n', begin)) {
        const QByteArray line = rest.mid(begin, end - begin);
        begin = static_cast<int>(end) + 1;
        if (line.startsWith('#'))
            continue;
        const QByteArray frame = line.mid(line.lastIndexOf(',') + 1).trimmed();
        digest = QCryptographicHash::hash(digest + frame, QCryptographicHash::Md5);
        ++count;
    }
    rest.remove(0, begin);
}

QString startIn(const QJsonObject &probe)
{
    const QJsonObject tags = probe["format"].toObject()["tags"].toObject();
    QString start = tags["timecode"].toString();
    const QJsonArray streams = probe["streams"].toArray();
    for (const QJsonValue &stream : streams) {
        const QString own = stream.toObject()["tags"].toObject()["timecode"].toString();
        if (!own.isEmpty())
            start = own;
    }
    return start.isEmpty() ? tags["time_reference"].toString() : start;
}

QStringList startsInMediainfo(const QByteArray &json)
{
    QStringList starts;
    const QJsonArray tracks = QJsonDocument::fromJson(json).object()["media"].toObject()["track"].toArray();
    for (const QJsonValue &track : tracks) {
        const QString start = track.toObject()["TimeCode_FirstFrame"].toString();
        // Pictures carry timecodes of their own, which stay when they are copied.
        if (track.toObject()["@type"] == "Other" && !start.isEmpty())
            starts += start;
    }
    return starts;
}

QString expectedStart(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe)
{
    if (!file.hasAudioTC)
        return {};
    if (expected.isWave)
        return QString::number(expected.timeReference);
    const QJsonObject picture = streamsOf(writtenProbe, "video").value(0);
    const auto rate = framecount::pictureRate(picture["avg_frame_rate"].toString());
    return rate ? framecount::atRate(file.audioTC, soundRate(file), *rate) : file.audioTC;
}

QStringList faults(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe,
                   const QByteArray &mediainfo, const Contents &source, const Contents &written)
{
    if (writtenProbe["streams"].toArray().isEmpty())
        return {"it cannot be read"};
    return startFaults(expectedStart(file, expected, writtenProbe), writtenProbe, mediainfo,
                       expected.isWave) +
           pictureFaults(file, expected, writtenProbe, source, written) +
           soundFaults(file, expected, writtenProbe, source, written);
}

QString praise(const FileData &file, const Expectation &expected, const QJsonObject &writtenProbe,
               const Contents &written)
{
    QStringList proven;
    const QString start = expectedStart(file, expected, writtenProbe);
    proven +=
        start.isEmpty() ? "no timecode" : (expected.isWave ? "starts at sample " : "starts at ") + start;
    const PictureCheck check = pictureCheck(file, expected, writtenProbe);
    if (check != PictureCheck::None)
        proven += QString("%1 frames").arg(written.frames) +
                  (check == PictureCheck::Count ? ", coded again" : " as they were");
    const int sounds = static_cast<int>(expected.sounds.size());
    int kept = 0;
    for (int i = 0; i < sounds; ++i)
        kept += areSamplesKept(file, expected, i, writtenProbe) ? 1 : 0;
    if (sounds > 0)
        proven += kept == sounds ? "samples as they were" : "sound coded again";
    return proven.join(", ");
}

} // namespace verification
