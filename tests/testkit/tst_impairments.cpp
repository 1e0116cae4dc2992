// SPDX-License-Identifier: MIT
#include "testkit/signals/impairments.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/noise.h"
#include "testkit/signals/othersounds.h"

#include <QTest>

#include <cmath>
#include <numbers>
#include <set>

using namespace testsignals;

namespace
{

constexpr int sampleRate = 48000;
constexpr std::size_t threeSeconds = std::size_t{3} * sampleRate;

double decibels(double powerRatio)
{
    return 10.0 * std::log10(powerRatio);
}

Samples sine(double frequency)
{
    Samples samples(threeSeconds);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = static_cast<float>(
            std::sin(2 * std::numbers::pi * frequency * static_cast<double>(n) / sampleRate));
    return samples;
}

/// Power within an octave around \a frequency.
double octavePower(Samples samples, double frequency)
{
    highPass(samples, sampleRate, frequency / std::numbers::sqrt2, 8);
    lowPass(samples, sampleRate, frequency * std::numbers::sqrt2, 8);
    return power(samples);
}

} // namespace

class TestImpairments : public QObject
{
    Q_OBJECT

private slots:
    void sameSeedGivesTheSameSound();
    void gaussianNumbersHaveUnitVariance();
    void noiseIsAddedAtTheStatedRatio();
    void filtersHalvePowerAtTheirCornerFrequency();
    void pinkNoiseHasEqualPowerInEveryOctave();
    void windFallsByTwelveDecibelsAnOctave();
    void differentiationLeavesSpikesOfTheTimeConstant();
    void quantisationKeepsToItsSteps();
    void automaticGainStartsLoudAndSettles();
    void dropoutsTakeTheirShare();
    void otherSoundsStayBelowFullScale();
};

void TestImpairments::sameSeedGivesTheSameSound()
{
    for (const OtherSound &sound : otherSounds()) {
        Random first = Random::forCase(1, sound.name, 2);
        Random second = Random::forCase(1, sound.name, 2);
        QVERIFY2(sound.make(first, 4800, sampleRate) == sound.make(second, 4800, sampleRate),
                 sound.name.c_str());
    }
    std::set<std::uint64_t> starts;
    for (std::uint64_t index = 0; index < 100; ++index)
        starts.insert(Random::forCase(1, "a", index).bits());
    starts.insert(Random::forCase(1, "b", 0).bits());
    starts.insert(Random::forCase(2, "a", 0).bits());
    QCOMPARE(starts.size(), std::size_t{102});
}

void TestImpairments::gaussianNumbersHaveUnitVariance()
{
    Random random(7);
    const Samples noise = whiteNoise(random, threeSeconds);
    QVERIFY(std::abs(power(noise) - 1.0) < 0.02);
    QVERIFY(largestMagnitude(noise) > 3.5);
    QVERIFY(largestMagnitude(noise) < 6.5);
}

void TestImpairments::noiseIsAddedAtTheStatedRatio()
{
    LtcSignal signal;
    const Samples clean = ltcAudio(signal);
    Samples noisy = clean;
    Random random(1);
    addAtRatio(noisy, whiteNoise(random, noisy.size()), -10.0);
    Samples noise = noisy;
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] -= clean[i];
    QVERIFY(std::abs(decibels(power(clean) / power(noise)) + 10.0) < 0.01);
    mixAtRatio(noisy, whiteNoise(random, noisy.size()), -30.0);
    QVERIFY(largestMagnitude(noisy) <= 1.0);
}

void TestImpairments::filtersHalvePowerAtTheirCornerFrequency()
{
    for (const double frequency : {200.0, 1200.0, 5000.0}) {
        Samples low = sine(frequency);
        lowPass(low, sampleRate, frequency);
        QVERIFY(std::abs(decibels(power(low) * 2) + 3.0) < 0.1);
        Samples high = sine(frequency);
        highPass(high, sampleRate, frequency);
        QVERIFY(std::abs(decibels(power(high) * 2) + 3.0) < 0.1);
    }
    Samples passed = sine(100.0);
    lowPass(passed, sampleRate, 1200.0);
    QVERIFY(std::abs(decibels(power(passed) * 2)) < 0.1);
}

void TestImpairments::pinkNoiseHasEqualPowerInEveryOctave()
{
    Random random(3);
    const Samples noise = pinkNoise(random, threeSeconds, sampleRate);
    const double reference = octavePower(noise, 1000.0);
    for (const double frequency : {125.0, 250.0, 500.0, 2000.0, 4000.0, 8000.0})
        QVERIFY(std::abs(decibels(octavePower(noise, frequency) / reference)) < 1.5);
}

void TestImpairments::windFallsByTwelveDecibelsAnOctave()
{
    Random random(3);
    const Samples noise = windNoise(random, threeSeconds, sampleRate);
    // An octave holds twice the bandwidth of the one below it, which takes 3 dB off the fall.
    const double fall = decibels(octavePower(noise, 500.0) / octavePower(noise, 1000.0));
    QVERIFY2(std::abs(fall - 9.0) < 1.5, qPrintable(QString::number(fall)));
}

void TestImpairments::differentiationLeavesSpikesOfTheTimeConstant()
{
    Samples step(480, 0.0F);
    std::fill(step.begin() + 100, step.end(), 1.0F);
    differentiate(step, sampleRate, 100e-6);
    QVERIFY(std::abs(step[100] - 0.9F) < 0.02F);
    const double decay = static_cast<double>(step[105]) / static_cast<double>(step[100]);
    QVERIFY(std::abs(decay - std::exp(-5.0 / 4.8)) < 0.001);
    QVERIFY(std::abs(step[200]) < 1e-6F);
}

void TestImpairments::quantisationKeepsToItsSteps()
{
    Random random(1);
    Samples samples = sine(440.0);
    quantise(samples, random, 8);
    std::set<float> values(samples.begin(), samples.end());
    QVERIFY(values.size() <= 256);
    for (const float value : values)
        QCOMPARE(value * 128.0F, std::round(value * 128.0F));
    Samples faint = sine(440.0);
    scaleToPeak(faint, -110.0);
    quantise(faint, random, 16, false);
    QCOMPARE(largestMagnitude(faint), 0.0);
}

void TestImpairments::automaticGainStartsLoudAndSettles()
{
    LtcSignal signal;
    Samples samples = ltcAudio(signal);
    automaticGain(samples, sampleRate, 30.0, 0.05, 1.0);
    const Samples begin(samples.begin(), samples.begin() + 480);
    const Samples end(samples.end() - 4800, samples.end());
    QCOMPARE(largestMagnitude(begin), 1.0);
    QVERIFY(largestMagnitude(end) < 0.5);
    QVERIFY(largestMagnitude(end) > 0.1);
}

void TestImpairments::dropoutsTakeTheirShare()
{
    Random random(5);
    Samples samples(threeSeconds, 1.0F);
    dropOut(samples, random, sampleRate, 0.4);
    QCOMPARE(std::count(samples.begin(), samples.end(), 0.0F), std::ptrdiff_t{57600});
}

void TestImpairments::otherSoundsStayBelowFullScale()
{
    for (const OtherSound &sound : otherSounds()) {
        for (const int rate : {8000, 48000}) {
            Random random(11);
            const Samples samples = sound.make(random, static_cast<std::size_t>(rate), rate);
            QCOMPARE(samples.size(), static_cast<std::size_t>(rate));
            QVERIFY2(largestMagnitude(samples) <= 1.0, sound.name.c_str());
            QVERIFY2(sound.name == "silence" || largestMagnitude(samples) > 0.0, sound.name.c_str());
        }
    }
}

QTEST_APPLESS_MAIN(TestImpairments)

#include "tst_impairments.moc"
