// SPDX-License-Identifier: MIT
#include "bench/ltc/oddcases.h"

#include "bench/ltc/curves.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/lossycodec.h"
#include "testkit/signals/noise.h"

#include <optional>
#include <stdexcept>

namespace ltcbench
{

namespace
{

void addWhite(Samples &samples, int, double value, Random &random)
{
    testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), value);
}

template <Samples (*make)(Random &, std::size_t, int)>
void add(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::addAtRatio(samples, make(random, samples.size(), sampleRate), value);
}

void radio(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::radioChannel(samples, sampleRate);
    Samples noise = testsignals::whiteNoise(random, samples.size());
    testsignals::radioChannel(noise, sampleRate);
    testsignals::addAtRatio(samples, noise, value);
}

void spikes(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::differentiate(samples, sampleRate, random.uniform(20e-6, 500e-6));
    addWhite(samples, sampleRate, value, random);
}

void lowPassed(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::lowPass(samples, sampleRate, value, 4);
    addWhite(samples, sampleRate, 40.0, random);
}

/// The noise is that of what records, so that it stays where the timecode is removed.
void highPassed(Samples &samples, int sampleRate, double value, Random &random)
{
    Samples noisy = samples;
    addWhite(noisy, sampleRate, 10.0, random);
    for (std::size_t n = 0; n < samples.size(); ++n)
        noisy[n] -= samples[n];
    testsignals::highPass(samples, sampleRate, value, 2);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] += noisy[n];
}

void clipped(Samples &samples, int sampleRate, double value, Random &random)
{
    addWhite(samples, sampleRate, value, random);
    testsignals::scaleToPeak(samples, 0.0);
    testsignals::overdrive(samples, random.uniform(6.0, 40.0));
}

void gainControl(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::addAtRatio(samples, testsignals::speechLike(random, samples.size(), sampleRate), value);
    testsignals::automaticGain(samples, sampleRate, random.uniform(0, 40), random.uniform(0.005, 0.1),
                               random.uniform(0.2, 2.0));
}

/// By the codec of that number among lossyCodecs(). Throws std::runtime_error where the tool fails.
template <std::size_t number>
void throughCodecAfterNoise(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::addAtRatio(samples, testsignals::pinkNoise(random, samples.size(), sampleRate), value);
    testsignals::scaleToPeak(samples, -3.0);
    const testsignals::LossyCodec &codec = testsignals::lossyCodecs().at(number);
    const std::optional<Samples> decoded = testsignals::throughCodec(samples, sampleRate, codec);
    if (!decoded)
        throw std::runtime_error("ffmpeg does not encode and decode " + codec.name);
    samples = *decoded;
}

} // namespace

const std::vector<Disturbance> &allDisturbances()
{
    const std::string ratio = "dB";
    static const std::vector<Disturbance> disturbances{
        {"none", "", {}, 0, 0, 0, nullptr, 2},
        {"white noise", ratio, {-9.6, -16.6, -20.7}, 20, -7, 2, addWhite, 1, 8},
        {"pink noise", ratio, {-5.5, -13, -16.4}, 17, -7, 2, add<testsignals::pinkNoise>, 1, 8},
        {"hum", ratio, {-72, -86, -92}, 50, -15, 6, add<testsignals::hum>, 1, 8},
        {"wind", ratio, {-43, -52, -55}, 35, -15, 5, add<testsignals::windNoise>, 1, 8},
        {"radio channel", ratio, {2, -6, -11.7}, 17, -7, 2, radio, 1, 8},
        {"speech", ratio, {-21, -36, -52}, 35, -15, 5, add<testsignals::speechLike>, 1, 8},
        {"music", ratio, {-24, -33, -33}, 30, -15, 4, add<testsignals::musicLike>, 1, 8},
        {"low-pass", "Hz", {700, 650, 600}, 2500, -350, 120, lowPassed},
        {"high-pass in noise", "Hz", {1500, 2500, 4500}, -500, 5000, 300, highPassed},
        {"spikes in white noise", ratio, {-7, -14, -18}, 24, -7, 2, spikes},
        {"clipping after white noise", ratio, {-9, -16, -20}, 24, -7, 2, clipped},
        {"gain control with speech", ratio, {-6, -14, -20}, 30, -20, 4, gainControl},
        {"wireless link", "grade", {3, 4, 5.5}, -1.2, 2, 0.4, wirelessLink},
        {"AAC 64 kbit/s after pink noise",
         ratio,
         {-4, -13, -16.5},
         17,
         -7,
         2,
         throughCodecAfterNoise<1>,
         0,
         1},
        {"MP3 64 kbit/s after pink noise", ratio, {-7, -13, -18}, 17, -7, 2, throughCodecAfterNoise<4>, 0, 1},
    };
    return disturbances;
}

} // namespace ltcbench
