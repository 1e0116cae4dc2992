// SPDX-License-Identifier: MIT
#include "tests/export-matrix/channelcheck.h"

#include "testkit/fixtures/toolrun.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace exportmatrix
{
namespace
{

QVector<Samples> decode(const QString &path, int index, int channels)
{
    const ToolRun run = runTool("ffmpeg", {"-v", "error", "-nostdin", "-i", path, "-map",
                                           QString("0:a:%1").arg(index), "-f", "f32le", "-"});
    const auto frames =
        static_cast<std::size_t>(run.output.size()) / sizeof(float) / static_cast<std::size_t>(channels);
    QVector<Samples> decoded(channels, Samples(frames));
    const char *position = run.output.constData();
    for (std::size_t frame = 0; frame < frames; ++frame) {
        for (Samples &channel : decoded) {
            std::memcpy(&channel[frame], position, sizeof(float));
            position += sizeof(float);
        }
    }
    return decoded;
}

double powerOf(const Samples &samples)
{
    double sum = 0.0;
    for (const float sample : samples)
        sum += double(sample) * double(sample);
    return samples.empty() ? 0.0 : sum / double(samples.size());
}

/// The share of the power that lies at \a frequency [Hz], 0 to 1.
double shareOfTone(const Samples &samples, double frequency, int sampleRate)
{
    double real = 0.0;
    double imaginary = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double phase = 2.0 * M_PI * frequency * double(i) / sampleRate;
        real += double(samples[i]) * std::cos(phase);
        imaginary += double(samples[i]) * std::sin(phase);
    }
    const double count = double(samples.size());
    const double tone = 2.0 * (real * real + imaginary * imaginary) / (count * count);
    return tone / std::max(powerOf(samples), 1e-12);
}

bool agrees(const Samples &found, const Samples &wanted, int bits)
{
    const float tolerance = 1.01F * std::ldexp(1.0F, 1 - bits);
    if (found.size() < wanted.size())
        return false;
    return std::equal(wanted.begin(), wanted.end(), found.begin(),
                      [tolerance](float a, float b) { return std::abs(a - b) <= tolerance; });
}

/// Whether \a found sounds like \a channel, whose timecode has no tone of its own.
bool soundsLike(const Samples &found, const mediakit::Channel &channel, const SourceFile &source,
                int sampleRate)
{
    constexpr double audible = 1e-4; // of full scale's power
    constexpr double clear = 0.8;
    if (powerOf(found) < audible)
        return false;
    if (!channel.timecode)
        return shareOfTone(found, channel.tone, sampleRate) > clear;
    for (const mediakit::Track &track : source.tracks) {
        for (const mediakit::Channel &other : track) {
            if (!other.timecode && shareOfTone(found, other.tone, sampleRate) > 1.0 - clear)
                return false;
        }
    }
    return true;
}

} // namespace

QStringList channelFaults(const QString &path, int index, const ExpectedTrack &track, const MadeFile &made)
{
    QStringList faults;
    const QVector<Samples> decoded = decode(path, index, static_cast<int>(track.channels.size()));
    for (int i = 0; i < decoded.size(); ++i) {
        const auto [wantedTrack, wantedChannel] = track.channels.at(i);
        const auto number = static_cast<std::size_t>(wantedChannel);
        const bool isRight =
            track.agreeingBits > 0
                ? agrees(decoded.at(i), made.samples.at(wantedTrack).at(number), track.agreeingBits)
                : soundsLike(decoded.at(i), made.source.tracks.at(wantedTrack).at(wantedChannel), made.source,
                             track.sampleRate);
        if (!isRight) {
            faults += QString("audio %1 channel %2 is not the source's channel %3 of audio %4")
                          .arg(index)
                          .arg(i)
                          .arg(wantedChannel)
                          .arg(wantedTrack);
        }
    }
    return faults;
}

} // namespace exportmatrix
