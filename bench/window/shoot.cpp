// SPDX-License-Identifier: MIT
#include "bench/window/shoot.h"

#include <QJsonDocument>
#include <QTimeZone>

namespace bench
{

namespace
{

constexpr int sampleRate = 48000;

const char *const soundProbe = R"json({"streams": [
    {"index": 0, "codec_name": "pcm_s24le", "codec_long_name": "PCM signed 24-bit little-endian", "codec_type": "audio",
     "codec_tag_string": "[1][0][0][0]", "codec_tag": "0x0001", "sample_fmt": "s32", "sample_rate": "48000", "channels": 2,
     "bits_per_sample": 24, "r_frame_rate": "0/0", "avg_frame_rate": "0/0", "time_base": "1/48000", "duration_ts": 480000,
     "duration": "%1", "bit_rate": "2304000", "bits_per_raw_sample": "24",
     "disposition": {"default": 0, "dub": 0, "original": 0, "comment": 0, "lyrics": 0, "karaoke": 0}}],
    "format": {"filename": "%2", "nb_streams": 1, "nb_programs": 0, "format_name": "wav",
     "format_long_name": "WAV / WAVE (Waveform Audio)", "duration": "%1", "size": "2880104", "bit_rate": "2304083",
     "probe_score": 99, "tags": {"time_reference": "1728000000", "coding_history": "A=PCM,F=48000,W=24,M=stereo"}}})json";

const char *const cameraProbe = R"json({"streams": [
    {"index": 0, "codec_name": "h264", "codec_long_name": "H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10", "profile": "High",
     "codec_type": "video", "codec_tag_string": "avc1", "codec_tag": "0x31637661", "width": 1920, "height": 1080,
     "pix_fmt": "yuv420p", "level": 41, "field_order": "progressive", "r_frame_rate": "25/1", "avg_frame_rate": "25/1",
     "time_base": "1/12800", "duration": "%1", "bit_rate": "50000000", "nb_frames": "250",
     "disposition": {"default": 1, "dub": 0, "original": 0, "comment": 0, "lyrics": 0, "karaoke": 0},
     "tags": {"language": "und", "handler_name": "VideoHandler", "encoder": "AVC Coding"}},
    {"index": 1, "codec_name": "pcm_s16le", "codec_long_name": "PCM signed 16-bit little-endian", "codec_type": "audio",
     "codec_tag_string": "sowt", "codec_tag": "0x74776f73", "sample_fmt": "s16", "sample_rate": "48000", "channels": 2,
     "channel_layout": "stereo", "bits_per_sample": 16, "time_base": "1/48000", "duration": "%1",
     "disposition": {"default": 1, "dub": 0, "original": 0, "comment": 0, "lyrics": 0, "karaoke": 0},
     "tags": {"language": "und", "handler_name": "SoundHandler"}}],
    "format": {"filename": "%2", "nb_streams": 2, "nb_programs": 0, "format_name": "mov,mp4,m4a,3gp,3g2,mj2",
     "format_long_name": "QuickTime / MOV", "duration": "%1", "size": "64000000", "bit_rate": "51200000",
     "probe_score": 100,
     "tags": {"major_brand": "qt  ", "creation_time": "2024-05-04T10:00:00.000000Z", "timecode": "10:00:00:00"}}})json";

bool isSound(Shoot::Kind kind, int row)
{
    return kind == Shoot::OneMoment || row % 2 == 1;
}

} // namespace

QString Shoot::name() const
{
    return kind == Ordinary ? "ordinary shoot" : "all of one moment";
}

QString Shoot::fileName(int row) const
{
    return QString::asprintf("A%03dC%03d_240504.%s", row / 1000 + 1, row % 1000 + 1,
                             isSound(kind, row) ? "wav" : "mov");
}

QDateTime Shoot::modified(int row) const
{
    const QDateTime noon(QDate(2024, 5, 4), QTime(12, 0), QTimeZone::utc());
    return kind == OneMoment ? noon : noon.addSecs(row);
}

QJsonObject Shoot::probe(int row) const
{
    constexpr int lengths = 1920; // within 0.04 s
    const double duration = 10.0 + static_cast<double>(row % lengths) / sampleRate;
    const QString text = QString(isSound(kind, row) ? soundProbe : cameraProbe)
                             .arg(QString::number(duration, 'f', 6), fileName(row));
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

bool Shoot::hasTimecode(int row) const
{
    return kind == Ordinary || row % 2 == 0;
}

QJsonObject Shoot::readerResult(int row) const
{
    if (!hasTimecode(row))
        return {};
    constexpr int frameRate = 25;
    const QString timecode =
        QString::asprintf("%02d:%02d:%02d:%02d", row / 3600 % 24, row / 60 % 60, row % 60, row % frameRate);
    return {{"Timecode", timecode},
            {"DropFrame", false},
            {"NTSC", false},
            {"FrameRateFound", frameRate},
            {"FrameRateBaseFound", frameRate},
            {"ChannelFound", 0},
            {"SamplesSinceMidnight", qint64{row} * sampleRate}};
}

} // namespace bench
