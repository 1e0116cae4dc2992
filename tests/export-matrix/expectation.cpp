// SPDX-License-Identifier: MIT
#include "tests/export-matrix/expectation.h"

#include "ffmpeg/outputname.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <utility>

namespace exportmatrix
{
namespace
{

using outputname::Container;

double perSecond(const QString &rate)
{
    const QStringList parts = rate.split('/');
    return parts.value(0).toDouble() / parts.value(1, "1").toDouble();
}

bool isMxf(const FileData &record)
{
    return record.suffix.compare("mxf", Qt::CaseInsensitive) == 0;
}

/// From MXF to MXF all sound is taken over as it is, the timecode with it.
bool keepsAllSound(const FileData &record, const ExportOptions &options, Container container)
{
    return !options.muteAudioTC || (container == Container::Mxf && isMxf(record));
}

/// What passes through of \a codec: PCM and the two lossy codecs that files of all kinds hold, the others as
/// 24 bit PCM.
QString keptCodec(const QString &codec, Container container)
{
    if (codec.startsWith("pcm_") || codec == "aac" || codec == "ac3")
        return codec;
    return container == Container::BroadcastWave ? "pcm_s24le" : "pcm_s24be";
}

QString wantedCodec(const FileData &record, const ExportOptions &options, Container container,
                    const QString &own)
{
    const QString asked = options.audioType == 2 ? "pcm_s24le" : "pcm_s16le";
    if (options.muteAudioTC && container == Container::Mxf && isMxf(record))
        return own;
    return options.audioType == 0 ? keptCodec(own, container) : asked;
}

/// What the written kind of file can hold of \a codec.
QString heldCodec(const QString &codec, bool writesMxf)
{
    if (!writesMxf)
        return codec;
    return codec.contains("16") ? "pcm_s16le" : "pcm_s24le";
}

/// What a stream that is coded again must be given at least.
qint64 leastBitRate(const QJsonObject &stream, int channels)
{
    constexpr qint64 perChannel = 128000; // [bits/s]
    const qint64 own = stream["bit_rate"].toString().toLongLong() / std::max(stream["channels"].toInt(), 1);
    return std::max(own, perChannel) * channels;
}

QVector<ExpectedTrack> expectedTracks(const MadeFile &file, const ExportOptions &options, Container container)
{
    const SourceFile &source = file.source;
    const FileData &record = file.record;
    const bool writesMxf = container == Container::Mxf || (container == Container::AsInput && isMxf(record));
    const bool keepsAll = !source.isRead || keepsAllSound(record, options, container);
    QVector<ExpectedTrack> tracks;
    for (int i = 0; i < source.tracks.size(); ++i) {
        const QJsonObject stream = file.audioStream(i);
        const QString own = stream["codec_name"].toString();
        ExpectedTrack track;
        track.codec = heldCodec(wantedCodec(record, options, container, own), writesMxf);
        track.sampleRate = writesMxf ? 48000 : source.sampleRate;
        if (own.startsWith("pcm") && track.codec.startsWith("pcm") && track.sampleRate == source.sampleRate)
            track.agreeingBits = own.contains("16") || track.codec.contains("16") ? 16 : 24;
        for (int channel = 0; channel < source.tracks.at(i).size(); ++channel) {
            if (keepsAll || !source.tracks.at(i).at(channel).timecode)
                track.channels += {i, channel};
        }
        const bool isCodedAgain = track.channels.size() < source.tracks.at(i).size();
        if (isCodedAgain && !track.codec.startsWith("pcm"))
            track.leastBitRate = leastBitRate(stream, static_cast<int>(track.channels.size()));
        if (!track.channels.isEmpty())
            tracks += track;
    }
    return tracks;
}

constexpr int mpeg2 = 1;

bool isTopFamily(const ExportOptions &options)
{
    return options.videoType == 4 || options.videoType == 8;
}

bool isLowFamily(const ExportOptions &options)
{
    return options.videoType == 2 || options.videoType == 6;
}

bool isCopied(const ExportOptions &options)
{
    return options.videoType == 0 || options.videoType == 5;
}

/// Interlaced pictures of 1080 lines stay so where the codec has such a profile.
Fields expectedFields(const PictureShape &shape, const ExportOptions &options)
{
    if (isCopied(options))
        return shape.fields;
    return shape.height == 1080 && !isLowFamily(options) ? shape.fields : Fields::Progressive;
}

void expectPicture(Expectation &expected, const MadeFile &file, const ExportOptions &options)
{
    const SourceFile &source = file.source;
    const QJsonObject picture = file.picture();
    // Not that of the main stream, which may be a cover: the picture itself may have a family all the same.
    const int rateClass = int(perSecond(picture["r_frame_rate"].toString()));
    const bool hasFamily = QVector<int>{23, 24, 25, 29, 30}.contains(rateClass);

    expected.pictureRate = source.hasWaveringRate ? QString() : source.pictureRate;
    expected.frames = int(std::ceil(source.duration * perSecond(source.pictureRate)));
    expected.card.fields = expectedFields(source.shape, options);
    expected.pictureCodec = picture["codec_name"].toString();
    expected.pixelFormat = picture["pix_fmt"].toString();
    expected.width = picture["width"].toInt();
    expected.height = picture["height"].toInt();
    if (isCopied(options))
        return;
    expected.pictureCodec = options.videoType == mpeg2 ? "mpeg2video" : "dnxhd";
    expected.pixelFormat = "yuv422p";
    if (options.videoType == mpeg2 || hasFamily) {
        if (isTopFamily(options) && rateClass <= 25)
            expected.pixelFormat = "yuv422p10le";
        expected.width = 1920;
        expected.height = 1080;
        expected.card.isFitted = true;
        return;
    }
    // Rates without a family get the codec that knows all sizes and rates.
    if (isTopFamily(options))
        expected.pixelFormat = "yuv422p10le";
    if (source.shape.isTurnedSideways())
        std::swap(expected.width, expected.height);
}

void expectTimecode(Expectation &expected, const SourceFile &source, const FileData &record)
{
    if (!record.hasAudioTC) {
        expected.timecode = QString();
        return;
    }
    const testsignals::LtcSignal timecode = *mediakit::timecodeOf(soundOf(source));
    const double picture = source.pictureRate.isEmpty() ? timecode.rate.base : perSecond(source.pictureRate);
    const bool isDropRate =
        std::abs(picture - 30000.0 / 1001) < 0.001 || std::abs(picture - 60000.0 / 1001) < 0.001;
    if (timecode.rate.dropFrame && !isDropRate)
        expected.refusal = "drop-frame";
    QString text = record.audioTC;
    text.chop(2);
    expected.timecode =
        text +
        QString("%1").arg(std::lround(timecode.start.frames * std::round(picture) / timecode.rate.base), 2,
                          10, QChar('0'));
}

void expectTimeReference(Expectation &expected, const SourceFile &source, const FileData &record)
{
    if (!record.hasAudioTC)
        return;
    const testsignals::LtcSignal timecode = *mediakit::timecodeOf(soundOf(source));
    expected.timeReference = testsignals::samplesSinceMidnight(timecode);
    expected.comment = QString("sSPEED=0%1-%2")
                           .arg(testsignals::framesPerSecond(timecode.rate), 0, 'f', 3)
                           .arg(timecode.rate.dropFrame ? "DF" : "ND");
}

/// Replaces the fact of \a group called \a name, where there is one.
void change(Facts &facts, FactGroup group, const QString &name, const QString &value)
{
    for (Fact &fact : facts) {
        if (fact.group == group && fact.name == name)
            fact.value = value;
    }
}

/// What the facts of a sound file say of its timecode.
void expectSpeed(Facts &facts, const testsignals::LtcSignal &timecode, const QString &comment)
{
    constexpr qint64 highPart = qint64{1} << 32;
    const qint64 start = testsignals::samplesSinceMidnight(timecode);
    const testsignals::LtcRate rate = timecode.rate;
    const auto changeSpeed = [&facts](const QString &name, const QString &value) {
        change(facts, FactGroup::IxmlSpeed, "SPEED/" + name, value);
    };
    changeSpeed("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", QString::number(start / highPart));
    changeSpeed("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", QString::number(start % highPart));
    for (const char *name : {"TIMECODE_RATE", "MASTER_SPEED", "CURRENT_SPEED"})
        changeSpeed(name,
                    rate.ntsc ? QString("%1/1001").arg(rate.base * 1000) : QString("%1/1").arg(rate.base));
    changeSpeed("TIMECODE_FLAG", rate.dropFrame ? "DF" : "NDF");
    change(facts, FactGroup::IxmlSpeed, "bext speed", comment.section('=', 1));
}

bool isOfStream(const Fact &fact)
{
    return fact.group == FactGroup::StreamNames || fact.group == FactGroup::StreamNotes ||
           fact.group == FactGroup::Languages;
}

/// The facts of the source but those of streams and channels that are left out, and with those of the new
/// timecode.
void expectFacts(Expectation &expected, const MadeFile &file)
{
    QVector<int> keptTracks;
    QVector<int> keptChannels;
    for (const ExpectedTrack &track : std::as_const(expected.tracks)) {
        keptTracks += track.channels.first().first;
        for (const auto &channel : track.channels)
            keptChannels += channel.second;
    }
    for (const Fact &fact : file.facts) {
        const QString number = fact.name.section(' ', 1, 1);
        if (isOfStream(fact) && fact.name.startsWith("audio") && !keptTracks.contains(number.toInt()))
            continue;
        if (fact.group == FactGroup::IxmlTracks && fact.name.startsWith("channel") &&
            !keptChannels.contains(number.toInt()))
            continue;
        // The comment of a sound file gives the new timecode's speed.
        if (expected.timeReference && fact.group == FactGroup::InfoText && fact.name == "ICMT")
            continue;
        // QuickTime files keep the reel with the timecode.
        const bool isMov = expected.target == Target::CopiedMov || expected.target == Target::DnxMov;
        if (isMov && fact.group == FactGroup::Reel && expected.timecode.value_or(QString()).isEmpty())
            continue;
        expected.facts += fact;
    }
    if (expected.timeReference)
        expectSpeed(expected.facts, *mediakit::timecodeOf(soundOf(file.source)), expected.comment);
    for (const char *bits : {"16", "24", "32"}) {
        if (!expected.tracks.isEmpty() && expected.tracks.first().codec.contains(bits))
            change(expected.facts, FactGroup::IxmlScene, "SPEED/AUDIO_BIT_DEPTH", bits);
    }
}

} // namespace

Expectation expectationOf(const MadeFile &file, const ExportOptions &options)
{
    const SourceFile &source = file.source;
    const FileData &record = file.record;
    const Container container = outputname::containerFor(record.absoluteFilePath, options.videoType);
    const bool isMxfOut = container == Container::Mxf || (container == Container::AsInput && isMxf(record));
    Expectation expected;
    expected.target =
        targetOf(container == Container::BroadcastWave ? "a.wav" : (isMxfOut ? "a.mxf" : "a.mov"), options);
    expected.tracks = expectedTracks(file, options, container);
    if (container == Container::BroadcastWave) {
        expectTimeReference(expected, source, record);
        if (expected.tracks.isEmpty())
            expected.refusal = "nothing but the timecode";
        expectFacts(expected, file);
        return expected;
    }
    expectTimecode(expected, source, record);
    if (!source.pictureRate.isEmpty())
        expectPicture(expected, file, options);
    else if (container == Container::Mxf)
        expected.refusal = "no picture";
    if (source.isCutOff) {
        expected.refusal = " ";
        expected.leavesHalf = true;
    }
    expectFacts(expected, file);
    return expected;
}

} // namespace exportmatrix
