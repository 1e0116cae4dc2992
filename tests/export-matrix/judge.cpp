// SPDX-License-Identifier: MIT
#include "tests/export-matrix/judge.h"

#include "testkit/fixtures/toolrun.h"
#include "tests/export-matrix/channelcheck.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace exportmatrix
{
namespace
{

/// Collects differences.
class Faults
{
public:
    template <typename Found, typename Wanted>
    void compare(const QString &what, const Found &found, const Wanted &wanted)
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

QVector<QJsonObject> streamsOf(const QJsonArray &streams, const QString &type)
{
    QVector<QJsonObject> found;
    for (const QJsonValue &stream : streams) {
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
    if (!expected.pictureRate.isEmpty())
        faults.compare("picture rate", picture["avg_frame_rate"].toString(), expected.pictureRate);
    faults.compare("number of frames", picture["nb_read_packets"].toString().toInt(), expected.frames);
}

void judgeSound(Faults &faults, const QString &path, const QJsonArray &streams, const Expectation &expected,
                const MadeFile &source)
{
    constexpr double shareOfTones =
        0.65; // of the rate that the coder is given; plain tones do not need all of it
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
        const double bitRate = found.at(i)["bit_rate"].toString().toDouble();
        faults.require(
            QString("%1 takes %2 bits a second of %3").arg(what).arg(bitRate).arg(track.leastBitRate),
            bitRate >= shareOfTones * double(track.leastBitRate));
        const int channels = found.at(i)["channels"].toInt();
        faults.compare(what + " channels", channels, track.channels.size());
        if (channels == track.channels.size())
            faults.texts += channelFaults(path, i, track, source);
    }
}

/// The sound must keep its place in relation to the picture.
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
        const QJsonArray streams = probe["streams"].toArray();
        for (const QJsonValue &stream : streams) {
            const QString text = stream.toObject()["tags"].toObject()["timecode"].toString();
            if (!text.isEmpty())
                texts += text;
        }
        if (tags.contains("timecode"))
            texts += tags["timecode"].toString();
        faults.require("no start timecode", !texts.isEmpty());
        for (const QString &text : std::as_const(texts))
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

QVector<QJsonObject> tracksOf(const QJsonArray &tracks, const QString &type)
{
    QVector<QJsonObject> found;
    for (const QJsonValue &track : tracks) {
        if (track.toObject()["@type"] == type)
            found += track.toObject();
    }
    return found;
}

/// The same once more, as reported by a program that shares no code with the tool that wrote the file.
void judgeWithMediainfo(Faults &faults, const QJsonArray &tracks, const Expectation &expected)
{
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

/// Where the card is read: a frame with others on both sides, as filters need them.
constexpr int readFrame = 1;

/// Decodes the whole file and checks that the tool found nothing to complain about. Returns the raw frames
/// up to the one that is read.
QByteArray decode(Faults &faults, const QString &path, bool hasCard)
{
    QStringList arguments{"-v",   "error", "-nostdin", "-noautorotate", "-i", path, "-map", "0:v?",
                          "-map", "0:a?",  "-f",       "null",          "-"};
    if (hasCard)
        arguments +=
            {"-map", "0:v:0", "-frames:v", QString::number(readFrame + 1), "-f", "rawvideo", "pipe:1"};
    const ToolRun run = runTool("ffmpeg", arguments);
    const QString complaint = QString::fromUtf8(run.errors).trimmed();
    faults.require("decoding says: " + complaint.section('\n', 0, 0),
                   complaint.isEmpty() && run.exitCode == 0);
    return run.output;
}

void readPicture(WrittenPicture &picture, const QByteArray &frames)
{
    const int size = Frame::sizeOf(picture.pixelFormat, picture.width, picture.height);
    const Frame frame(frames.mid(readFrame * size, size), picture.pixelFormat, picture.width, picture.height,
                      picture.rotation);
    picture.card = readCard(frame, picture.colours.range == "pc");
}

/// The order of fields that the coded picture itself states, as mediainfo reads it.
std::optional<Fields> codedFields(const QJsonArray &tracks)
{
    const QString order = tracksOf(tracks, "Video").value(0)["ScanOrder"].toString();
    if (order == "TFF")
        return Fields::TopFirst;
    return order == "BFF" ? std::optional(Fields::BottomFirst) : std::nullopt;
}

QVector<Finding> pictureFindings(Faults &faults, const QJsonArray &streams, const QJsonArray &tracks,
                                 const QByteArray &frames, const Expectation &expected,
                                 const MadeFile &source)
{
    try {
        WrittenPicture picture = pictureOf(streamsOf(streams, "video").value(0));
        if (!picture.fields)
            picture.fields = codedFields(tracks);
        readPicture(picture, frames);
        return comparePicture(source.source.shape, picture, expected.card);
    } catch (const std::exception &problem) {
        faults.texts += problem.what();
        return {};
    }
}

/// Where colours were converted, and are shown as before, the tags are others.
void acceptConvertedColours(QVector<Finding> &findings, const QVector<Finding> &ofPicture)
{
    const bool isConverted = std::any_of(ofPicture.begin(), ofPicture.end(), [](const Finding &finding) {
        return finding.thing.startsWith("Colours") && finding.verdict == Verdict::Converted;
    });
    for (Finding &finding : findings) {
        if (isConverted && finding.thing == nameOf(FactGroup::ColourTags) && finding.verdict == Verdict::Lost)
            finding.verdict = Verdict::Converted;
    }
}

QVector<Finding> factFindings(const QString &path, const QJsonObject &probe, const QJsonArray &tracks,
                              const Expectation &expected)
{
    QVector<int> audioNumbers;
    QVector<int> channels;
    for (const ExpectedTrack &track : expected.tracks) {
        audioNumbers += track.channels.first().first;
        for (const auto &channel : track.channels)
            channels += channel.second;
    }
    return compareFacts(expected.facts,
                        factsOfFile(path, probe, audioNumbers, channels) + luminanceFacts(tracks),
                        expected.target);
}

} // namespace

Judgement judge(const QString &path, const Expectation &expected, const MadeFile &source)
{
    Faults faults;
    const QJsonObject probe = probeOf(path);
    const QJsonArray streams = probe["streams"].toArray();
    const QJsonArray tracks = mediainfoOf(path);
    judgePicture(faults, streams, expected);
    judgeSound(faults, path, streams, expected, source);
    judgeSync(faults, streams, source.probe["streams"].toArray());
    judgeTimecode(faults, probe, expected, source.record);
    judgeWithMediainfo(faults, tracks, expected);

    const bool hasCard = source.source.shape.exists();
    const QByteArray frames = decode(faults, path, hasCard);
    QVector<Finding> findings = factFindings(path, probe, tracks, expected);
    if (hasCard) {
        // QuickTime files have to note the order of fields themselves.
        const bool isQuickTime = expected.target == Target::CopiedMov || expected.target == Target::DnxMov;
        const QVector<Finding> ofPicture =
            pictureFindings(faults, streams, isQuickTime ? QJsonArray() : tracks, frames, expected, source);
        acceptConvertedColours(findings, ofPicture);
        findings += ofPicture;
    }
    for (const Finding &finding : std::as_const(findings)) {
        if (finding.verdict == Verdict::Lost)
            faults.texts += finding.thing + ": " + finding.detail;
    }
    constexpr int mostFaults = 6;
    if (const auto more = faults.texts.size() - mostFaults; more > 0)
        faults.texts = faults.texts.mid(0, mostFaults) + QStringList{QString("and %1 more").arg(more)};
    return {faults.texts, findings};
}

QStringList sourceFaults(const MadeFile &source)
{
    const PictureShape &shape = source.source.shape;
    if (!shape.exists() || source.source.isCutOff)
        return {};
    Faults faults;
    Expectation own;
    own.card.fields = shape.fields;
    const QByteArray frames = decode(faults, source.record.absoluteFilePath, true);
    const QVector<Finding> findings =
        pictureFindings(faults, source.probe["streams"].toArray(),
                        mediainfoOf(source.record.absoluteFilePath), frames, own, source);
    for (const Finding &finding : findings) {
        if (finding.verdict != Verdict::Kept)
            faults.texts += finding.thing + ": " + finding.detail;
    }
    return faults.texts;
}

} // namespace exportmatrix
