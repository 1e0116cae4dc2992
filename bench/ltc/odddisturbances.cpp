// SPDX-License-Identifier: MIT
#include "bench/ltc/oddcases.h"

#include "bench/ltc/curves.h"
#include "tests/support/impairments.h"
#include "tests/support/noise.h"

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

void highPassed(Samples &samples, int sampleRate, double value, Random &random)
{
    testsignals::highPass(samples, sampleRate, value, 2);
    addWhite(samples, sampleRate, 30.0, random);
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

} // namespace

const std::vector<Disturbance> &allDisturbances()
{
    const std::string ratio = "dB";
    static const std::vector<Disturbance> disturbances{
        {"none", "", 0, 0, 0, 0, 0, nullptr},
        {"white noise", ratio, 0, -20.5, -27, 3, 10, addWhite},
        {"pink noise", ratio, 0, -16.7, -24, 3, 10, add<testsignals::pinkNoise>},
        {"hum", ratio, -15, -60, -80, 6, 12, add<testsignals::hum>},
        {"wind", ratio, -20, -56, -70, 5, 12, add<testsignals::windNoise>},
        {"radio channel", ratio, 6, -11, -18, 3, 10, radio},
        {"speech", ratio, -5, -40, -55, 6, 12, add<testsignals::speechLike>},
        {"music", ratio, -5, -36, -50, 5, 12, add<testsignals::musicLike>},
        {"low-pass", "Hz", 4000, 1100, 500, 200, 0, lowPassed},
        {"high-pass", "Hz", 700, 5000, 12000, 500, 0, highPassed},
        {"spikes in white noise", ratio, 6, -18, -25, 3, 10, spikes},
        {"clipping after white noise", ratio, 6, -18, -25, 3, 10, clipped},
        {"gain control with speech", ratio, 10, -20, -40, 5, 12, gainControl},
        {"wireless link", "grade", 2, 5.5, 7.5, 0.5, -0.5, wirelessLink},
    };
    return disturbances;
}

} // namespace ltcbench
