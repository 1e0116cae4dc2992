// SPDX-License-Identifier: MIT
#include "bench/ltc/curves.h"

#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"

#include <cmath>
#include <utility>

namespace ltcbench
{

namespace
{

using Impair = void (*)(Samples &samples, int sampleRate, double grade, Random &random);

/// Any signal at any rate after \a impair, stored in \a bits.
Curve curve(const std::string &name, const std::string &unit, std::vector<double> grades, Impair impair,
            int bits = 16, bool graded = true)
{
    return {"Signal", name, unit, std::move(grades), graded, [impair, bits](double grade, Random &random) {
                const LtcSignal signal = anySignal(random, anyRate(random));
                Samples samples = audioOf(signal, random);
                impair(samples, signal.sampleRate, grade, random);
                return monoCase(signal, std::move(samples), random, bits);
            }};
}

void addWhite(Samples &samples, Random &random, double ratio)
{
    testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), ratio);
}

void level(Samples &samples, int, double grade, Random &)
{
    testsignals::scaleToPeak(samples, 20 * std::log10(grade / 32768.0));
}

void clipped(Samples &samples, int, double grade, Random &random)
{
    addWhite(samples, random, 6.0);
    testsignals::scaleToPeak(samples, 0.0);
    testsignals::overdrive(samples, grade);
}

void gainControl(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::addAtRatio(samples, testsignals::speechLike(random, samples.size(), sampleRate), 6.0);
    testsignals::automaticGain(samples, sampleRate, grade, random.uniform(0.005, 0.1),
                               random.uniform(0.2, 2.0));
}

void lowPassed(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::lowPass(samples, sampleRate, grade, 4);
    addWhite(samples, random, 40.0);
}

void highPassed(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::highPass(samples, sampleRate, grade, 2);
    addWhite(samples, random, 30.0);
}

void toSpikes(Samples &samples, int sampleRate, double timeConstant, Random &random)
{
    testsignals::differentiate(samples, sampleRate, timeConstant);
    if (random.chance(0.7))
        testsignals::ring(samples, sampleRate, random.uniform(4000, 15000), random.uniform(2, 10),
                          random.uniform(3, 15));
}

void spikes(Samples &samples, int sampleRate, double grade, Random &random)
{
    toSpikes(samples, sampleRate, grade * 1e-6, random);
    testsignals::scaleToPeak(samples, random.uniform(-50, -1));
}

void spikesByLevel(Samples &samples, int sampleRate, double grade, Random &random)
{
    toSpikes(samples, sampleRate, random.uniform(20e-6, 500e-6), random);
    testsignals::scaleToPeak(samples, grade);
}

void spikesInNoise(Samples &samples, int sampleRate, double grade, Random &random)
{
    toSpikes(samples, sampleRate, random.uniform(20e-6, 500e-6), random);
    addWhite(samples, random, grade);
}

void offset(Samples &samples, int, double grade, Random &random)
{
    testsignals::scaleToPeak(samples, -20.0);
    testsignals::addOffset(samples, random.chance(0.5) ? grade : -grade);
}

void asymmetrical(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::lowPass(samples, sampleRate, 4000, 2);
    testsignals::makeAsymmetrical(samples, grade);
    addWhite(samples, random, 20.0);
}

void inverted(Samples &samples, int, double grade, Random &)
{
    if (grade > 0)
        testsignals::invert(samples);
}

} // namespace

std::vector<Curve> curvesOfSignals()
{
    return {
        curve("level, 16 bit with dither", "steps of 16 bit",
              {3000, 300, 30, 10, 5, 3, 2, 1.4, 1, 0.7, 0.5, 0.35, 0.25}, level),
        curve("overdriven with noise at 6 dB", "dB above full scale", {0, 6, 12, 20, 30, 40, 60}, clipped),
        curve("automatic gain, speech at 6 dB", "dB too loud at first", {0, 6, 12, 20, 30, 40, 50},
              gainControl),
        curve("low-pass", "Hz", {8000, 5000, 4000, 3000, 2400, 2000, 1700, 1500, 1350, 1200, 1000, 800},
              lowPassed),
        curve("high-pass", "Hz", {200, 400, 700, 1000, 1500, 2000, 2500, 3000, 4000, 5000, 7000, 10000},
              highPassed),
        curve("spikes, -50 to -1 dBFS", "us time constant", {500, 300, 200, 100, 50, 30, 20}, spikes),
        curve("spikes by level", "dBFS", gradesFrom(-20, -90, -10), spikesByLevel),
        curve("spikes in white noise", "dB, spikes over noise", gradesFrom(24, -24, -4), spikesInNoise),
        curve("constant offset, timecode at -20 dBFS", "of full scale", {0.05, 0.2, 0.5, 0.8, 0.9, 0.95},
              offset),
        curve("asymmetry", "dB between half-waves", {0, 3, 6, 10, 15, 20, 30}, asymmetrical),
        curve("polarity", "0 as made, 1 inverted", {0, 1}, inverted, 16, false)};
}

} // namespace ltcbench
