// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

/// Records as the import leaves them, for the export's tests.
namespace samplerecords
{

/// One audio stream as the probe describes it.
inline QJsonObject sound(const QString &codec, int channels, const QString &layout = {})
{
    QJsonObject stream{{"codec_type", "audio"}, {"codec_name", codec}, {"channels", channels}};
    if (!layout.isEmpty())
        stream["channel_layout"] = layout;
    return stream;
}

/// A file of 10 s at \a path with a picture of \a frameRate as stream 0 and \a sounds as streams 1, 2, ...;
/// WAV files have no picture.
inline FileData mediaFile(const QString &path, const QVector<QJsonObject> &sounds,
                          const QString &frameRate = "25/1")
{
    FileData file;
    const QFileInfo info(path);
    file.absoluteFilePath = path;
    file.fileName = info.fileName();
    file.baseName = info.baseName();
    file.suffix = info.suffix();
    file.duration = 10.0;
    file.rowNumber = 0;
    if (info.suffix().compare("wav", Qt::CaseInsensitive) != 0) {
        file.mainStream = {{"codec_type", "video"}, {"r_frame_rate", frameRate}};
        file.streams += file.mainStream;
    }
    for (const QJsonObject &stream : sounds) {
        file.audioStreamMap += static_cast<char>(file.streams.size());
        file.streams += stream;
        file.audioStreams += stream;
    }
    return file;
}

/// What the timecode reader printed.
inline QJsonObject reading(double rate, int baseRate, bool ntsc, bool dropFrame, qint64 samples = 0)
{
    return {{"Timecode", "10:00:00:00"},      {"FrameRateFound", rate},
            {"FrameRateBaseFound", baseRate}, {"NTSC", ntsc},
            {"DropFrame", dropFrame},         {"ChannelFound", 0},
            {"SamplesSinceMidnight", samples}};
}

/// \a file with the timecode 10:00:00:00, found in \a channel of stream \a stream (index in its streams).
inline FileData withTimecode(FileData file, int stream, int channel,
                             const QJsonObject &result = reading(25.0, 25, false, false))
{
    file.setAudioTC("10:00:00:00", {stream, channel});
    file.hasAudioTC = true;
    file.audioTCResult = result;
    return file;
}

} // namespace samplerecords
