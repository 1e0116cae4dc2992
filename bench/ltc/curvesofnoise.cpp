// SPDX-License-Identifier: MIT
#include "bench/ltc/curves.h"

#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"

#include <utility>

namespace ltcbench
{

namespace
{

constexpr LtcRate pal{25, false, false};
constexpr const char *section = "Noise";
constexpr const char *ratio = "dB, timecode over the rest";

using MakeNoise = Samples (*)(Random &random, std::size_t count, int sampleRate);

Samples white(Random &random, std::size_t count, int)
{
    return testsignals::whiteNoise(random, count);
}

Case withNoise(LtcSignal signal, MakeNoise makeNoise, double grade, Random &random)
{
    Samples samples = audioOf(signal, random);
    testsignals::addAtRatio(samples, makeNoise(random, samples.size(), signal.sampleRate), grade);
    return monoCase(signal, std::move(samples), random, fineBits);
}

Curve whiteCurve(const std::string &name, LtcRate rate, double duration, std::vector<double> grades)
{
    return {section, name, ratio, std::move(grades), true, [rate, duration](double grade, Random &random) {
                LtcSignal signal = anySignal(random, rate);
                signal.duration = duration;
                return withNoise(signal, white, grade, random);
            }};
}

Curve noiseCurve(const std::string &name, MakeNoise makeNoise, std::vector<double> grades)
{
    return {section, name, ratio, std::move(grades), true, [makeNoise](double grade, Random &random) {
                return withNoise(anySignal(random, anyRate(random)), makeNoise, grade, random);
            }};
}

/// Timecode and noise have both passed the channel before their powers are compared.
Case radioCase(double grade, Random &random)
{
    const LtcSignal signal = anySignal(random, anyRate(random));
    Samples samples = audioOf(signal, random);
    testsignals::radioChannel(samples, signal.sampleRate);
    Samples noise = testsignals::whiteNoise(random, samples.size());
    testsignals::radioChannel(noise, signal.sampleRate);
    testsignals::addAtRatio(samples, noise, grade);
    return monoCase(signal, std::move(samples), random, fineBits);
}

} // namespace

std::vector<Curve> curvesOfNoise()
{
    std::vector<Curve> curves;
    for (const LtcRate rate : allRates())
        curves.push_back(whiteCurve("white noise, 3 s, " + nameOf(rate), rate, 3.0, gradesFrom(12, -26, -2)));
    curves.push_back(whiteCurve("white noise, 1 s, 25", pal, 1.0, gradesFrom(12, -22, -2)));
    curves.push_back(whiteCurve("white noise, 0.2 s, 25", pal, 0.2, gradesFrom(12, -14, -2)));
    curves.push_back(noiseCurve("pink noise", testsignals::pinkNoise, gradesFrom(8, -24, -2)));
    curves.push_back(noiseCurve("hum", testsignals::hum, gradesFrom(0, -64, -4)));
    curves.push_back(noiseCurve("wind", testsignals::windNoise, gradesFrom(0, -70, -5)));
    curves.push_back({section, "radio channel", ratio, gradesFrom(12, -22, -2), true, radioCase});
    curves.push_back(noiseCurve("speech bleed", testsignals::speechLike, gradesFrom(6, -34, -4)));
    curves.push_back(noiseCurve("music bleed", testsignals::musicLike, gradesFrom(6, -34, -4)));
    return curves;
}

} // namespace ltcbench
