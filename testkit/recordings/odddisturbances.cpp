// SPDX-License-Identifier: MIT
#include "testkit/recordings/oddcases.h"

#include "testkit/recordings/curves.h"
#include "testkit/signals/lossycodec.h"
#include "testkit/signals/noise.h"

#include <optional>
#include <stdexcept>

namespace testrecordings
{

namespace
{

using namespace testsignals;

constexpr int sampleRate = 48000;

void spikes(Samples &samples, double value, Random &random)
{
    differentiate(samples, sampleRate, random.uniform(20e-6, 500e-6));
    addWhite(samples, value, random);
}

void lowPassed(Samples &samples, double value, Random &random)
{
    lowPass(samples, sampleRate, value, 4);
    addWhite(samples, 40.0, random);
}

/// The noise is that of what records, so that it stays where the timecode is removed.
void highPassed(Samples &samples, double value, Random &random)
{
    Samples noise = samples;
    addWhite(noise, 10.0, random);
    for (std::size_t n = 0; n < samples.size(); ++n)
        noise[n] -= samples[n];
    highPass(samples, sampleRate, value, 2);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] += noise[n];
}

void clipped(Samples &samples, double value, Random &random)
{
    addWhite(samples, value, random);
    scaleToPeak(samples, 0.0);
    overdrive(samples, random.uniform(6.0, 40.0));
}

void gainControl(Samples &samples, double value, Random &random)
{
    add<speechLike>(samples, value, random);
    automaticGain(samples, sampleRate, random.uniform(0, 40), random.uniform(0.005, 0.1),
                  random.uniform(0.2, 2.0));
}

/// By the codec of that number among lossyCodecs(). Throws std::runtime_error where the tool fails.
template <std::size_t number>
void codecAfterNoise(Samples &samples, double value, Random &random)
{
    add<pinkNoise>(samples, value, random);
    scaleToPeak(samples, -3.0);
    const LossyCodec &codec = lossyCodecs().at(number);
    const std::optional<Samples> decoded = throughCodec(samples, sampleRate, codec);
    if (!decoded)
        throw std::runtime_error("ffmpeg does not encode and decode " + codec.name);
    samples = *decoded;
}

} // namespace

const std::vector<Disturbance> &allDisturbances()
{
    const char *dB = "dB";
    static const std::vector<Disturbance> disturbances{
        {"none", "", {}, 0, 0, 0, nullptr, 2},
        {"white noise", dB, {-9.6, -16.6, -20.7}, 20, -7, 2, addWhite, 1, 8},
        {"pink noise", dB, {-5.5, -13, -16.4}, 17, -7, 2, add<pinkNoise>, 1, 8},
        {"hum", dB, {-72, -86, -92}, 50, -15, 6, add<hum>, 1, 8},
        {"wind", dB, {-43, -52, -55}, 35, -15, 5, add<windNoise>, 1, 8},
        {"radio channel", dB, {2, -6, -11.7}, 17, -7, 2, addInRadioChannel, 1, 8},
        {"speech", dB, {-21, -36, -52}, 35, -15, 5, add<speechLike>, 1, 8},
        {"music", dB, {-24, -33, -33}, 30, -15, 4, add<musicLike>, 1, 8},
        {"low-pass", "Hz", {700, 650, 600}, 2500, -350, 120, lowPassed},
        {"high-pass in noise", "Hz", {1500, 2500, 4500}, -500, 5000, 300, highPassed},
        {"spikes in white noise", dB, {-7, -14, -18}, 24, -7, 2, spikes},
        {"clipping after white noise", dB, {-9, -16, -20}, 24, -7, 2, clipped},
        {"gain control with speech", dB, {-6, -14, -20}, 30, -20, 4, gainControl},
        {"wireless link", "grade", {3, 4, 5.5}, -1.2, 2, 0.4, wirelessLink},
        {"AAC 64 kbit/s after pink noise", dB, {-4, -13, -16.5}, 17, -7, 2, codecAfterNoise<1>, 0, 1},
        {"MP3 64 kbit/s after pink noise", dB, {-7, -13, -18}, 17, -7, 2, codecAfterNoise<4>, 0, 1},
    };
    return disturbances;
}

} // namespace testrecordings
