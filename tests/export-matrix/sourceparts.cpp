// SPDX-License-Identifier: MIT
#include "tests/export-matrix/sourceparts.h"

namespace exportmatrix::sourceparts
{

using mediakit::Track;
using testsignals::LtcRate;

namespace
{

QStringList h264()
{
    return {"-c:v:0", "libx264", "-preset", "ultrafast", "-bf", "0", "-pix_fmt", "yuv420p"};
}

QStringList mpeg2()
{
    return {"-c:v:0", "mpeg2video", "-b:v", "4M", "-bf", "0", "-pix_fmt", "yuv420p"};
}

} // namespace

Track channels(int count, int timecode, LtcRate rate, int firstTone)
{
    Track track;
    for (int i = 0; i < count; ++i) {
        if (i == timecode)
            track += mediakit::timecodeChannel({10, 11, 12, 13}, rate);
        else
            track += mediakit::toneChannel(400.0 + 150.0 * (firstTone + i));
    }
    return track;
}

QVector<Track> single(int count, int timecode, LtcRate rate)
{
    QVector<Track> tracks;
    for (int i = 0; i < count; ++i)
        tracks += channels(1, i == timecode ? 0 : -1, rate, i);
    return tracks;
}

QStringList coded(const QString &codec)
{
    return {"-c:a:%1", codec};
}

QStringList withoutLayout(const QString &codec, int count)
{
    QString filter = QString("pan=%1C").arg(count);
    for (int i = 0; i < count; ++i)
        filter += QString("|c%1=c%1").arg(i);
    return {"-c:a:%1", codec, "-filter:a:%1", filter};
}

SourceFile movie(const QString &name, const QString &rate, const QVector<Track> &tracks,
                 const QStringList &audio, bool isCore)
{
    SourceFile source;
    source.name = name;
    source.pictureRate = rate;
    source.pictureArguments = name.endsWith(".MXF") ? mpeg2() : h264();
    source.tracks = tracks;
    source.trackArguments.fill(audio, tracks.size());
    source.isCore = isCore;
    return source;
}

SourceFile sound(const QString &name, const Track &track, const QStringList &audio, bool isCore)
{
    SourceFile source = movie(name, {}, {track}, audio, isCore);
    source.fileArguments = QStringList{"-write_bext", "1"};
    return source;
}

} // namespace exportmatrix::sourceparts
