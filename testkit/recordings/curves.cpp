// SPDX-License-Identifier: MIT
#include "testkit/recordings/curves.h"

#include "testkit/signals/biphasemark.h"
#include "testkit/signals/lossycodec.h"
#include "testkit/signals/noise.h"

#include <cmath>
#include <stdexcept>

namespace testrecordings
{

namespace
{

using namespace testsignals;

constexpr int sampleRate = 48000; // of anySignal()
constexpr const char *ratio = "dB, timecode over the rest";

using Impair = std::function<void(Samples &samples, double grade, Random &random)>;

/// Which timecode is impaired and how it is stored.
struct Timecode {
    int bits = 16;
    std::optional<LtcRate> rate = {}; ///< none: any
    double seconds = 3.0;
};

Curve impaired(const std::string &section, const std::string &name, const std::string &unit,
               std::vector<double> grades, const Impair &impair, const Timecode &timecode = {})
{
    return {section, name, unit, std::move(grades), true, [impair, timecode](double grade, Random &random) {
                LtcSignal signal = anySignal(random, timecode.rate ? *timecode.rate : anyRate(random));
                signal.duration = timecode.seconds;
                Samples samples = audioOf(signal, random);
                impair(samples, grade, random);
                return monoCase(signal, std::move(samples), random, timecode.bits);
            }};
}

std::vector<Curve> curvesOfNoise()
{
    const auto noise = [](const std::string &name, const Impair &impair, const std::vector<double> &grades,
                          std::optional<LtcRate> rate = {}, double seconds = 3.0) {
        return impaired("Noise", name, ratio, grades, impair, {fineBits, rate, seconds});
    };
    constexpr LtcRate pal{25, false, false};
    std::vector<Curve> curves;
    for (const LtcRate rate : allRates())
        curves.push_back(noise("white noise, 3 s, " + nameOf(rate), addWhite, gradesFrom(12, -26, -2), rate));
    curves.push_back(noise("white noise, 1 s, 25", addWhite, gradesFrom(12, -22, -2), pal, 1.0));
    curves.push_back(noise("white noise, 0.2 s, 25", addWhite, gradesFrom(12, -14, -2), pal, 0.2));
    curves.push_back(noise("pink noise", add<pinkNoise>, gradesFrom(8, -24, -2)));
    curves.push_back(noise("hum", add<hum>, gradesFrom(0, -64, -4)));
    curves.push_back(noise("wind", add<windNoise>, gradesFrom(0, -70, -5)));
    curves.push_back(noise("radio channel", addInRadioChannel, gradesFrom(12, -22, -2)));
    curves.push_back(noise("speech bleed", add<speechLike>, gradesFrom(6, -34, -4)));
    curves.push_back(noise("music bleed", add<musicLike>, gradesFrom(6, -34, -4)));
    return curves;
}

void toSpikes(Samples &samples, double timeConstant, Random &random)
{
    differentiate(samples, sampleRate, timeConstant);
    if (random.chance(0.7))
        ring(samples, sampleRate, random.uniform(4000, 15000), random.uniform(2, 10), random.uniform(3, 15));
}

std::vector<Curve> curvesOfSignals()
{
    const auto signal = [](const std::string &name, const std::string &unit,
                           const std::vector<double> &grades,
                           void (*impair)(Samples & samples, double grade, Random &random)) {
        return impaired("Signal", name, unit, grades, impair);
    };
    std::vector<Curve> curves{
        signal("level, 16 bit with dither", "steps of 16 bit",
               {3000, 300, 30, 10, 5, 3, 2, 1.4, 1, 0.7, 0.5, 0.35, 0.25},
               [](Samples &samples, double grade, Random &) {
                   scaleToPeak(samples, 20 * std::log10(grade / 32768.0));
               }),
        signal("overdriven with noise at 6 dB", "dB above full scale", {0, 6, 12, 20, 30, 40, 60},
               [](Samples &samples, double grade, Random &random) {
                   addWhite(samples, 6.0, random);
                   scaleToPeak(samples, 0.0);
                   overdrive(samples, grade);
               }),
        signal("automatic gain, speech at 6 dB", "dB too loud at first", {0, 6, 12, 20, 30, 40, 50},
               [](Samples &samples, double grade, Random &random) {
                   add<speechLike>(samples, 6.0, random);
                   automaticGain(samples, sampleRate, grade, random.uniform(0.005, 0.1),
                                 random.uniform(0.2, 2.0));
               }),
        signal("low-pass", "Hz", {8000, 5000, 4000, 3000, 2400, 2000, 1700, 1500, 1350, 1200, 1000, 800},
               [](Samples &samples, double grade, Random &random) {
                   lowPass(samples, sampleRate, grade, 4);
                   addWhite(samples, 40.0, random);
               }),
        signal("high-pass", "Hz", {200, 400, 700, 1000, 1500, 2000, 2500, 3000, 4000, 5000, 7000, 10000},
               [](Samples &samples, double grade, Random &random) {
                   highPass(samples, sampleRate, grade, 2);
                   addWhite(samples, 30.0, random);
               }),
        signal("spikes, -50 to -1 dBFS", "us time constant", {500, 300, 200, 100, 50, 30, 20},
               [](Samples &samples, double grade, Random &random) {
                   toSpikes(samples, grade * 1e-6, random);
                   scaleToPeak(samples, random.uniform(-50, -1));
               }),
        signal("spikes by level", "dBFS", gradesFrom(-20, -90, -10),
               [](Samples &samples, double grade, Random &random) {
                   toSpikes(samples, random.uniform(20e-6, 500e-6), random);
                   scaleToPeak(samples, grade);
               }),
        signal("spikes in white noise", "dB, spikes over noise", gradesFrom(24, -24, -4),
               [](Samples &samples, double grade, Random &random) {
                   toSpikes(samples, random.uniform(20e-6, 500e-6), random);
                   addWhite(samples, grade, random);
               }),
        signal("constant offset, timecode at -20 dBFS", "of full scale", {0.05, 0.2, 0.5, 0.8, 0.9, 0.95},
               [](Samples &samples, double grade, Random &random) {
                   scaleToPeak(samples, -20.0);
                   addOffset(samples, random.chance(0.5) ? grade : -grade);
               }),
        signal("asymmetry", "dB between half-waves", {0, 3, 6, 10, 15, 20, 30},
               [](Samples &samples, double grade, Random &random) {
                   lowPass(samples, sampleRate, 4000, 2);
                   makeAsymmetrical(samples, grade);
                   addWhite(samples, 20.0, random);
               }),
        signal("polarity", "0 as made, 1 inverted", {0, 1}, [](Samples &samples, double grade, Random &) {
            if (grade > 0)
                invert(samples);
        })};
    curves.back().graded = false;
    return curves;
}

/// Through the real ffmpeg; only codecs whose encoder it has.
std::vector<Curve> curvesOfCodecs()
{
    std::vector<Curve> curves;
    for (const LossyCodec &codec : lossyCodecs()) {
        if (!isAvailable(codec))
            continue;
        const auto make = [codec](double grade, Random &random) {
            LtcSignal signal = anySignal(random, anyRate(random));
            signal.offset = random.uniform(-0.3, 0.3); // leaves room for the delay of the codec
            Samples samples = audioOf(signal, random);
            mixAtRatio(samples, pinkNoise(random, samples.size(), sampleRate), grade);
            auto decoded = throughCodec(samples, sampleRate, codec);
            if (!decoded)
                throw std::runtime_error("ffmpeg failed at " + codec.name);
            return monoCase(signal, std::move(*decoded), random);
        };
        curves.push_back(
            {"Codecs", codec.name + " after pink noise", ratio, {40, 20, 10, 4, 0, -4, -8, -12}, true, make});
    }
    return curves;
}

/// The timecode jumps; the answer is that of the part which the first sample belongs to.
Case jump(double grade, Random &random)
{
    const LtcSignal signal = anySignal(random, anyRate(random));
    const LtcSignal other = anySignal(random, signal.rate);
    Samples samples = audioOf(signal, random);
    Samples continuation = audioOf(other, random);
    scaleToPower(continuation, power(samples));
    continueWith(samples, continuation, sampleRate, grade);
    addWhite(samples, 20.0, random);
    return monoCase(signal, std::move(samples), random);
}

std::vector<Curve> curvesOfTransport()
{
    // A machine that does not run at its nominal speed.
    const auto machine = [](const std::string &name, const std::string &unit, std::vector<double> grades,
                            Transport (*transportOf)(double share, Random &random)) -> Curve {
        return {
            "Transport", name, unit, std::move(grades), true, [transportOf](double grade, Random &random) {
                const LtcSignal signal = anySignal(random, anyRate(random));
                Samples samples = biphaseMarkAudio(signal, transportOf(grade / 100, random));
                addWhite(samples, 20.0, random);
                Case recording = monoCase(signal, std::move(samples), random);
                recording.truth->speedKnown = false;
                return recording;
            }};
    };
    // Any signal after an impairment, with slight noise.
    const auto part = [](const std::string &name, const std::string &unit, const std::vector<double> &grades,
                         const Impair &impair) {
        return impaired("Transport", name, unit, grades,
                        [impair](Samples &samples, double grade, Random &random) {
                            impair(samples, grade, random);
                            addWhite(samples, 20.0, random);
                        });
    };
    const std::vector<double> speeds{0.05, 0.2, 1, 2, 4, 6, 8, 10};
    const std::vector<double> swings{0.1, 0.3, 0.5, 1, 2, 3, 5};
    const std::vector<double> lengths{2.8, 2, 1, 0.5, 0.3, 0.2, 0.15, 0.1, 0.05};
    return {
        machine("slow machine", "% slow", speeds,
                [](double share, Random &) { return Transport{.deviation = -share}; }),
        machine("fast machine", "% fast", speeds,
                [](double share, Random &) { return Transport{.deviation = share}; }),
        machine("wow, 0.4 to 2 Hz", "% of speed", swings,
                [](double share, Random &random) {
                    return Transport{.wowDepth = share, .wowFrequency = random.uniform(0.4, 2.0)};
                }),
        machine("flutter, 6 to 30 Hz", "% of speed", swings,
                [](double share, Random &random) {
                    return Transport{.flutterDepth = share, .flutterFrequency = random.uniform(6, 30)};
                }),
        part("dropouts of 5 to 100 ms", "% of the time", {5, 10, 20, 30, 40, 50, 60, 70, 80, 90},
             [](Samples &samples, double grade, Random &random) {
                 dropOut(samples, random, sampleRate, grade / 100);
             }),
        part("late start in 3 s", "s of timecode", lengths,
             [](Samples &samples, double grade, Random &) {
                 keepOnly(samples, sampleRate, 3.0 - grade, 3.0);
             }),
        part("early end in 3 s", "s of timecode", lengths,
             [](Samples &samples, double grade, Random &) { keepOnly(samples, sampleRate, 0.0, grade); }),
        {"Transport", "jump in 3 s", "s before the jump", {2.7, 2, 1.5, 1, 0.7, 0.5, 0.3, 0.2}, true, jump}};
}

/// A line signal into a microphone input: spikes, ringing, gain control that lets noise and speech come up.
void microphoneInput(Samples &samples, double grade, Random &random)
{
    differentiate(samples, sampleRate, random.uniform(30e-6, 400e-6));
    ring(samples, sampleRate, random.uniform(5000, 14000), random.uniform(2, 6), 2 * grade);
    add<speechLike>(samples, 26 - 5 * grade, random);
    addWhite(samples, 32 - 5 * grade, random);
    automaticGain(samples, sampleRate, 4 * grade, random.uniform(0.005, 0.05), random.uniform(0.3, 2));
    lowPass(samples, sampleRate, 16000, 4);
}

/// Timecode over the air next to the camera, heard by its microphone: a loudspeaker's band, wind, speech.
void loudspeaker(Samples &samples, double grade, Random &random)
{
    highPass(samples, sampleRate, 300, 4);
    lowPass(samples, sampleRate, 9000 / std::sqrt(grade), 4);
    add<pinkNoise>(samples, 20 - 4 * grade, random);
    add<windNoise>(samples, 10 - 6 * grade, random);
    add<speechLike>(samples, 16 - 4 * grade, random);
    overdrive(samples, random.uniform(0, 2 * grade));
}

/// A long unbalanced cable: low level, hum, high frequencies lost, crosstalk of music.
void longCable(Samples &samples, double grade, Random &random)
{
    lowPass(samples, sampleRate, 8000 / grade, 2);
    add<hum>(samples, 10 - 6 * grade, random);
    add<musicLike>(samples, 24 - 5 * grade, random);
    addWhite(samples, 30 - 5 * grade, random);
    scaleToPeak(samples, -10 - 6 * grade);
}

/// Several impairments at once, as cameras and recorders make them.
std::vector<Curve> curvesOfCombinations()
{
    const auto combined = [](const std::string &name, const Impair &impair) {
        return impaired("Combinations", name, "grade", gradesFrom(1, 8, 1), impair);
    };
    return {combined("line into microphone input", microphoneInput),
            combined("loudspeaker beside the camera", loudspeaker), combined("wireless link", wirelessLink),
            combined("long cable", longCable)};
}

} // namespace

void addWhite(Samples &samples, double decibels, Random &random)
{
    addAtRatio(samples, whiteNoise(random, samples.size()), decibels);
}

void addInRadioChannel(Samples &samples, double decibels, Random &random)
{
    radioChannel(samples, sampleRate);
    Samples noise = whiteNoise(random, samples.size());
    radioChannel(noise, sampleRate);
    addAtRatio(samples, noise, decibels);
}

void wirelessLink(Samples &samples, double grade, Random &random)
{
    addInRadioChannel(samples, 18 - 4 * grade, random);
    dropOut(samples, random, sampleRate, 0.05 * grade);
    add<hum>(samples, 10 - 5 * grade, random);
}

std::vector<double> gradesFrom(double first, double last, double step)
{
    std::vector<double> grades;
    const int count = static_cast<int>(std::lround((last - first) / step));
    for (int i = 0; i <= count; ++i)
        grades.push_back(first + i * step);
    return grades;
}

const std::vector<Curve> &allCurves()
{
    static const std::vector<Curve> curves = [] {
        std::vector<Curve> all;
        for (const auto &part : {curvesOfNoise(), curvesOfSignals(), curvesOfCodecs(), curvesOfTransport(),
                                 curvesOfFormats(), curvesOfCombinations()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return curves;
}

} // namespace testrecordings
