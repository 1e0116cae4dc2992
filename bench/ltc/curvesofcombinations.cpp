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

Curve curve(const std::string &name, Impair impair)
{
    return {"Combinations", name, "grade", gradesFrom(1, 8, 1), true, [impair](double grade, Random &random) {
                const LtcSignal signal = anySignal(random, anyRate(random));
                Samples samples = audioOf(signal, random);
                impair(samples, signal.sampleRate, grade, random);
                return monoCase(signal, std::move(samples), random);
            }};
}

/// A line signal into a microphone input: spikes, ringing, gain control that lets noise and speech come up.
void microphoneInput(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::differentiate(samples, sampleRate, random.uniform(30e-6, 400e-6));
    testsignals::ring(samples, sampleRate, random.uniform(5000, 14000), random.uniform(2, 6), 2 * grade);
    testsignals::addAtRatio(samples, testsignals::speechLike(random, samples.size(), sampleRate),
                            26 - 5 * grade);
    testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), 32 - 5 * grade);
    testsignals::automaticGain(samples, sampleRate, 4 * grade, random.uniform(0.005, 0.05),
                               random.uniform(0.3, 2));
    testsignals::lowPass(samples, sampleRate, 16000, 4);
}

/// Timecode over the air next to the camera, heard by its microphone: a loudspeaker's band, wind, speech.
void loudspeaker(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::highPass(samples, sampleRate, 300, 4);
    testsignals::lowPass(samples, sampleRate, 9000 / std::sqrt(grade), 4);
    testsignals::addAtRatio(samples, testsignals::pinkNoise(random, samples.size(), sampleRate),
                            20 - 4 * grade);
    testsignals::addAtRatio(samples, testsignals::windNoise(random, samples.size(), sampleRate),
                            10 - 6 * grade);
    testsignals::addAtRatio(samples, testsignals::speechLike(random, samples.size(), sampleRate),
                            16 - 4 * grade);
    testsignals::overdrive(samples, random.uniform(0, 2 * grade));
}

/// A long unbalanced cable: low level, hum, high frequencies lost, crosstalk of music.
void longCable(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::lowPass(samples, sampleRate, 8000 / grade, 2);
    testsignals::addAtRatio(samples, testsignals::hum(random, samples.size(), sampleRate), 10 - 6 * grade);
    testsignals::addAtRatio(samples, testsignals::musicLike(random, samples.size(), sampleRate),
                            24 - 5 * grade);
    testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), 30 - 5 * grade);
    testsignals::scaleToPeak(samples, -10 - 6 * grade);
}

} // namespace

void wirelessLink(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::radioChannel(samples, sampleRate);
    Samples noise = testsignals::whiteNoise(random, samples.size());
    testsignals::radioChannel(noise, sampleRate);
    testsignals::addAtRatio(samples, noise, 18 - 4 * grade);
    testsignals::dropOut(samples, random, sampleRate, 0.05 * grade);
    testsignals::addAtRatio(samples, testsignals::hum(random, samples.size(), sampleRate), 10 - 5 * grade);
}

std::vector<Curve> curvesOfCombinations()
{
    return {curve("line into microphone input", microphoneInput),
            curve("loudspeaker beside the camera", loudspeaker), curve("wireless link", wirelessLink),
            curve("long cable", longCable)};
}

} // namespace ltcbench
