// SPDX-License-Identifier: MIT
#include "testkit/media/recording.h"

namespace mediakit
{

Channel timecodeChannel(testsignals::LtcTime start, testsignals::LtcRate rate, double level, Damage damage)
{
    testsignals::LtcSignal signal;
    signal.start = start;
    signal.rate = rate;
    signal.level = level;
    return Channel{signal, 0.0, damage};
}

Channel toneChannel(double frequency)
{
    return Channel{std::nullopt, frequency, Damage::None};
}

Recording movie(const QString &path, const QString &pictureRate, const QString &audioCodec,
                const QVector<Track> &tracks)
{
    Recording recording;
    recording.path = path;
    recording.pictureRate = pictureRate;
    recording.audioCodec = audioCodec;
    recording.tracks = tracks;
    return recording;
}

Recording soundFile(const QString &path, const Track &track, double duration)
{
    Recording recording;
    recording.path = path;
    recording.tracks = {track};
    recording.duration = duration;
    return recording;
}

std::optional<testsignals::LtcSignal> timecodeOf(const Recording &recording)
{
    std::optional<testsignals::LtcSignal> found = recording.siblingTimecode;
    for (const Track &track : recording.tracks) {
        for (const Channel &channel : track) {
            if (channel.timecode)
                found = channel.timecode;
        }
    }
    if (found) {
        found->sampleRate = recording.sampleRate;
        found->duration = recording.duration;
    }
    return found;
}

bool isTimecodeAlone(const Recording &recording)
{
    return isSoundFile(recording) && recording.tracks.size() == 1 && recording.tracks.first().size() == 1 &&
           recording.tracks.first().first().timecode;
}

bool isSoundFile(const Recording &recording)
{
    return recording.path.endsWith(QLatin1String(".wav"), Qt::CaseInsensitive);
}

} // namespace mediakit
