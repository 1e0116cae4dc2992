// SPDX-License-Identifier: MIT
#include "bench/ltc/curves.h"

#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"

#include <utility>

namespace ltcbench
{

namespace
{

constexpr const char *section = "Transport";

void addSlightNoise(Samples &samples, Random &random)
{
    testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), 20.0);
}

/// A machine that does not run at its nominal speed.
Curve machineCurve(const std::string &name, const std::string &unit, std::vector<double> grades,
                   testsignals::Transport (*transportOf)(double grade, Random &random))
{
    return {section, name, unit, std::move(grades), true, [transportOf](double grade, Random &random) {
                const LtcSignal signal = anySignal(random, anyRate(random));
                Samples samples = testsignals::biphaseMarkAudio(signal, transportOf(grade, random));
                addSlightNoise(samples, random);
                Case recording = monoCase(signal, std::move(samples), random);
                recording.truth->speedKnown = false;
                return recording;
            }};
}

testsignals::Transport slow(double grade, Random &)
{
    testsignals::Transport transport;
    transport.deviation = -grade / 100;
    return transport;
}

testsignals::Transport fast(double grade, Random &)
{
    testsignals::Transport transport;
    transport.deviation = grade / 100;
    return transport;
}

testsignals::Transport wow(double grade, Random &random)
{
    testsignals::Transport transport;
    transport.wowDepth = grade / 100;
    transport.wowFrequency = random.uniform(0.4, 2.0);
    return transport;
}

testsignals::Transport flutter(double grade, Random &random)
{
    testsignals::Transport transport;
    transport.flutterDepth = grade / 100;
    transport.flutterFrequency = random.uniform(6, 30);
    return transport;
}

/// Any signal with slight noise, then \a impair.
Curve partCurve(const std::string &name, const std::string &unit, std::vector<double> grades,
                void (*impair)(Samples &samples, int sampleRate, double grade, Random &random))
{
    return {section, name, unit, std::move(grades), true, [impair](double grade, Random &random) {
                const LtcSignal signal = anySignal(random, anyRate(random));
                Samples samples = audioOf(signal, random);
                impair(samples, signal.sampleRate, grade, random);
                addSlightNoise(samples, random);
                return monoCase(signal, std::move(samples), random);
            }};
}

void dropouts(Samples &samples, int sampleRate, double grade, Random &random)
{
    testsignals::dropOut(samples, random, sampleRate, grade / 100);
}

void lateStart(Samples &samples, int sampleRate, double grade, Random &)
{
    testsignals::keepOnly(samples, sampleRate, 3.0 - grade, 3.0);
}

void earlyEnd(Samples &samples, int sampleRate, double grade, Random &)
{
    testsignals::keepOnly(samples, sampleRate, 0.0, grade);
}

/// The timecode jumps; the answer is that of the part which the first sample belongs to.
Case jump(double grade, Random &random)
{
    const LtcSignal signal = anySignal(random, anyRate(random));
    const LtcSignal other = anySignal(random, signal.rate);
    Samples samples = audioOf(signal, random);
    Samples continuation = audioOf(other, random);
    testsignals::scaleToPower(continuation, testsignals::power(samples));
    testsignals::continueWith(samples, continuation, signal.sampleRate, grade);
    addSlightNoise(samples, random);
    return monoCase(signal, std::move(samples), random);
}

} // namespace

std::vector<Curve> curvesOfTransport()
{
    const std::string held = "s of timecode";
    return {machineCurve("slow machine", "% slow", {0.05, 0.2, 1, 2, 4, 6, 8, 10}, slow),
            machineCurve("fast machine", "% fast", {0.05, 0.2, 1, 2, 4, 6, 8, 10}, fast),
            machineCurve("wow, 0.4 to 2 Hz", "% of speed", {0.1, 0.3, 0.5, 1, 2, 3, 5}, wow),
            machineCurve("flutter, 6 to 30 Hz", "% of speed", {0.1, 0.3, 0.5, 1, 2, 3, 5}, flutter),
            partCurve("dropouts of 5 to 100 ms", "% of the time", {5, 10, 20, 30, 40, 50, 60, 70, 80, 90},
                      dropouts),
            partCurve("late start in 3 s", held, {2.8, 2, 1, 0.5, 0.3, 0.2, 0.15, 0.1, 0.05}, lateStart),
            partCurve("early end in 3 s", held, {2.8, 2, 1, 0.5, 0.3, 0.2, 0.15, 0.1, 0.05}, earlyEnd),
            {section, "jump in 3 s", "s before the jump", {2.7, 2, 1.5, 1, 0.7, 0.5, 0.3, 0.2}, true, jump}};
}

} // namespace ltcbench
