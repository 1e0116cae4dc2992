// SPDX-License-Identifier: MIT
#include "tests/export-matrix/expectation.h"

#include "ffmpeg/outputname.h"

#include <QRegularExpression>

#include <cmath>

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
    return !options.muteAudioTC || (container == Container::mxf && isMxf(record));
}

/// What passes through of \a codec: PCM and the two lossy codecs that files of all kinds hold, the others as
/// 24 bit PCM.
QString keptCodec(const QString &codec, Container container)
{
    if (codec.startsWith("pcm_") || codec == "aac" || codec == "ac3")
        return codec;
    return container == Container::broadcastWave ? "pcm_s24le" : "pcm_s24be";
}

QString wantedCodec(const FileData &record, const ExportOptions &options, Container container,
                    const QString &own)
{
    const QString asked = options.audioType == 2 ? "pcm_s24le" : "pcm_s16le";
    if (options.muteAudioTC && container == Container::mxf && isMxf(record))
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

QVector<ExpectedTrack> expectedTracks(const SourceFile &source, const FileData &record,
                                      const ExportOptions &options, Container container)
{
    const bool writesMxf = container == Container::mxf || (container == Container::asInput && isMxf(record));
    QVector<ExpectedTrack> tracks;
    for (int i = 0; i < source.tracks.size(); ++i) {
        const QString own = record.streams.at(static_cast<signed char>(record.audioStreamMap.at(i)))
                                .toObject()["codec_name"]
                                .toString();
        ExpectedTrack track;
        track.codec = heldCodec(wantedCodec(record, options, container, own), writesMxf);
        track.sampleRate = writesMxf ? 48000 : source.sampleRate;
        if (own.startsWith("pcm") && track.codec.startsWith("pcm") && track.sampleRate == source.sampleRate)
            track.agreeingBits = own.contains("16") || track.codec.contains("16") ? 16 : 24;
        for (int channel = 0; channel < source.tracks.at(i).size(); ++channel) {
            if (keepsAllSound(record, options, container) || !source.tracks.at(i).at(channel).timecode)
                track.channels += {i, channel};
        }
        if (!track.channels.isEmpty())
            tracks += track;
    }
    return tracks;
}

void expectPicture(Expectation &expected, const SourceFile &source, const FileData &record,
                   const ExportOptions &options)
{
    constexpr int mpeg2 = 1;
    const int type = options.videoType;
    const bool isCopied = type == 0 || type == 5;
    const int rateClass = int(perSecond(record.mainStream["r_frame_rate"].toString()));
    const bool hasFamily = QVector<int>{23, 24, 25, 29, 30}.contains(rateClass);
    const bool isTopFamily = type == 4 || type == 8;

    expected.pictureRate = source.pictureRate;
    expected.frames = int(std::ceil(sourceDuration * perSecond(source.pictureRate)));
    expected.pixelFormat = "yuv420p";
    expected.width = 320;
    expected.height = 180;
    expected.pictureCodec = source.pictureArguments.contains("libx264") ? "h264" : "mpeg2video";
    if (isCopied)
        return;
    const bool isDnxhr = type != mpeg2 && !hasFamily;
    expected.pictureCodec = type == mpeg2 ? "mpeg2video" : "dnxhd";
    expected.pixelFormat = isTopFamily && (rateClass <= 25 || isDnxhr) ? "yuv422p10le" : "yuv422p";
    if (isDnxhr)
        return;
    expected.width = 1920;
    expected.height = 1080;
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

} // namespace

Expectation expectationOf(const MadeFile &file, const ExportOptions &options)
{
    const SourceFile &source = file.source;
    const FileData &record = file.record;
    const Container container = outputname::containerFor(record.absoluteFilePath, options.videoType);
    Expectation expected;
    expected.tracks = expectedTracks(source, record, options, container);
    if (container == Container::broadcastWave) {
        expectTimeReference(expected, source, record);
        if (expected.tracks.isEmpty())
            expected.refusal = "nothing but the timecode";
        return expected;
    }
    expectTimecode(expected, source, record);
    if (!source.pictureRate.isEmpty())
        expectPicture(expected, source, record, options);
    else if (container == Container::mxf)
        expected.refusal = "no picture";
    return expected;
}

} // namespace exportmatrix
