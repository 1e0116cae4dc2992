// SPDX-License-Identifier: MIT
#include "testkit/recordings/curves.h"

#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"
#include "testkit/signals/othersounds.h"

#include <cmath>
#include <utility>

namespace testrecordings
{

namespace
{

using namespace testsignals;

LtcSignal atAnyRate(Random &random)
{
    return anySignal(random, anyRate(random));
}

LtcSignal atRate(double number, Random &random)
{
    return anySignal(random, allRates()[static_cast<std::size_t>(number)]);
}

Case clean(const LtcSignal &signal, Random &random)
{
    return monoCase(signal, audioOf(signal, random), random);
}

/// \a sound added to timecode that stays far below it.
Case below(const LtcSignal &signal, Samples samples, const Samples &sound, double decibels, Random &random)
{
    addAtRatio(samples, sound, decibels);
    return monoCase(signal, std::move(samples), random, fineBits);
}

Case sampleRates(double grade, Random &random)
{
    LtcSignal signal = atAnyRate(random);
    signal.sampleRate = static_cast<int>(grade);
    return clean(signal, random);
}

Case noisySampleRates(double grade, Random &random)
{
    LtcSignal signal = atAnyRate(random);
    signal.sampleRate = static_cast<int>(grade);
    Samples samples = audioOf(signal, random);
    const Samples noise = whiteNoise(random, samples.size());
    // The noise of a full band at 48 kHz, of which a lower sample rate takes less.
    return below(signal, std::move(samples), noise, -4.0 + 10 * std::log10(48000.0 / grade), random);
}

Case sampleSizes(double grade, Random &random)
{
    const LtcSignal signal = atAnyRate(random);
    Samples samples = audioOf(signal, random);
    if (grade == 33) // stands for floating point, here far above full scale
        return {{std::move(samples)}, signal.sampleRate, Truth{signal, 0, true}};
    return monoCase(signal, std::move(samples), random, static_cast<int>(grade));
}

Case durations(double grade, Random &random)
{
    LtcSignal signal = atAnyRate(random);
    signal.duration = grade;
    return clean(signal, random);
}

Case midnight(double grade, Random &random)
{
    LtcSignal signal = atRate(grade, random);
    const auto before = static_cast<std::int64_t>(random.uniform(0.0, 2.5) * signal.rate.base);
    signal.start = timeOfFrame(-before, signal.rate);
    return clean(signal, random);
}

Case fullMinutes(double grade, Random &random)
{
    LtcSignal signal = atRate(grade, random);
    const LtcTime minute{random.integer(0, 23), random.integer(0, 59), 59, 0};
    const auto later = static_cast<std::int64_t>(random.uniform(-1.5, 0.9) * signal.rate.base);
    signal.start = timeOfFrame(frameNumber(minute, signal.rate) + later, signal.rate);
    return clean(signal, random);
}

Case syncLikeUserBits(double grade, Random &random)
{
    constexpr std::uint32_t patterns[]{0xBFFCBFFC, 0x3FFD3FFD, 0xFFFFFFFF,
                                       0xFFFC3FFF, 0x7FF97FF9, 0xFFF3FFF3};
    LtcSignal signal = atAnyRate(random);
    signal.userBits = patterns[static_cast<std::size_t>(grade)];
    return clean(signal, random);
}

Case oddBits(double grade, Random &random)
{
    const LtcSignal signal = atAnyRate(random);
    const FrameHabits habits{.userBitsChange = grade != 1, .parityWrong = grade != 0};
    return monoCase(signal, biphaseMarkAudio(signal, {}, habits), random);
}

Case oddBitsInNoise(double grade, Random &random)
{
    const LtcSignal signal = atAnyRate(random);
    const FrameHabits habits{.userBitsChange = true, .parityWrong = random.chance(0.5)};
    Samples samples = biphaseMarkAudio(signal, {}, habits);
    const Samples noise = whiteNoise(random, samples.size());
    return below(signal, std::move(samples), noise, grade, random);
}

/// Timecode on one channel, other sounds on the rest.
Case channels(double grade, Random &random)
{
    const auto count = static_cast<int>(grade);
    const LtcSignal signal = atAnyRate(random);
    Case recording = clean(signal, random);
    const Samples timecode = std::move(recording.channels.front());
    recording.channels.clear();
    recording.truth->channel = random.integer(0, count - 1);
    // The sounds before the biphase kinds: what is found next to timecode.
    constexpr int programmeSounds = 9;
    for (int channel = 0; channel < count; ++channel) {
        const auto &sound = otherSounds()[static_cast<std::size_t>(random.integer(0, programmeSounds - 1))];
        recording.channels.push_back(channel == recording.truth->channel
                                         ? timecode
                                         : sound.make(random, timecode.size(), signal.sampleRate));
    }
    return recording;
}

/// Two channels; the timecode of one leaks into the other, which holds programme sound or nothing.
Case leak(double grade, Random &random)
{
    const LtcSignal signal = atAnyRate(random);
    const Samples timecode = audioOf(signal, random);
    Samples leaked = timecode;
    highPass(leaked, signal.sampleRate, random.uniform(50, 1000));
    scaleToPower(leaked, power(timecode) * std::pow(10.0, -grade / 10));
    if (random.chance(0.5))
        addAtRatio(leaked, speechLike(random, leaked.size(), signal.sampleRate), random.uniform(-20, 20));
    const int channel = random.integer(0, 1);
    Case recording = monoCase(signal, timecode, random, fineBits);
    Case second = monoCase(signal, std::move(leaked), random, fineBits);
    recording.channels.insert(channel == 0 ? recording.channels.end() : recording.channels.begin(),
                              std::move(second.channels.front()));
    recording.truth->channel = channel;
    return recording;
}

/// The timecode of another source leaks into the only channel.
Case foreignTimecode(double grade, Random &random)
{
    const LtcSignal signal = atAnyRate(random);
    Samples samples = audioOf(signal, random);
    addAtRatio(samples, audioOf(anySignal(random, signal.rate), random), grade);
    return monoCase(signal, std::move(samples), random);
}

/// All that is there is timecode leaked below speech.
Case leakAlone(double grade, Random &random)
{
    const LtcSignal signal = atAnyRate(random);
    Samples samples = audioOf(signal, random);
    highPass(samples, signal.sampleRate, random.uniform(100, 1500));
    const Samples speech = speechLike(random, samples.size(), signal.sampleRate);
    return below(signal, std::move(samples), speech, grade, random);
}

} // namespace

std::vector<Curve> curvesOfFormats()
{
    const std::string section = "Formats";
    const std::vector<double> byNumber{0, 1, 2, 3, 4, 5};
    const std::string rate = "rate: 23.976, 24, 25, 29.97, drop, 30";
    const std::string ratio = "dB, timecode over the rest";
    const auto cleanAtRate = [](double grade, Random &random) {
        return clean(atRate(grade, random), random);
    };
    return {
        {section, "clean", rate, byNumber, false, cleanAtRate},
        {section,
         "sample rates",
         "Hz",
         {8000, 11025, 16000, 22050, 32000, 44100, 48000, 88200, 96000, 176400, 192000},
         false,
         sampleRates},
        {section,
         "sample rates, white noise of -4 dB at 48 kHz",
         "Hz",
         {192000, 96000, 48000, 44100, 32000, 16000, 8000},
         false,
         noisySampleRates},
        {section, "sample sizes", "bit, 33 is float", {8, 16, 24, 32, 33}, false, sampleSizes},
        {section, "durations", "s", {3, 2, 1, 0.5, 0.3, 0.25, 0.2, 0.15, 0.1}, true, durations},
        {section, "across midnight", rate, byNumber, false, midnight},
        {section, "across full minutes", rate, byNumber, false, fullMinutes},
        {section, "user bits like sync words", "pattern", byNumber, false, syncLikeUserBits},
        {section, "odd bits", "0 user bits change, 1 parity wrong, 2 both", {0, 1, 2}, false, oddBits},
        {section, "odd bits in white noise", ratio, gradesFrom(8, -20, -4), true, oddBitsInNoise},
        {section, "channels", "channels", {1, 2, 4, 8, 16}, false, channels},
        {section, "leak into a second channel", ratio, {40, 30, 20, 10, 6, 3, 1}, true, leak},
        {section, "foreign timecode in the channel", ratio, {30, 20, 15, 12, 9, 6, 3}, true, foreignTimecode},
        {section, "leak alone, below speech", ratio, {20, 10, 0, -6, -12, -18, -24}, true, leakAlone}};
}

} // namespace testrecordings
