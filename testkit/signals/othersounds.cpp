// SPDX-License-Identifier: MIT
#include "testkit/signals/othersounds.h"

#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"
#include "testkit/signals/steps.h"

#include <array>
#include <cmath>
#include <numbers>

namespace testsignals
{

namespace
{

constexpr double turn = 2 * std::numbers::pi;
constexpr std::array<LtcRate, 6> rates{{{24, true, false},
                                        {24, false, false},
                                        {25, false, false},
                                        {30, true, false},
                                        {30, true, true},
                                        {30, false, false}}};

double bitRate(Random &random)
{
    const double deviation = random.chance(0.5) ? 0.0 : random.uniform(-0.1, 0.1);
    return bitsPerFrame * framesPerSecond(rates[static_cast<std::size_t>(random.integer(0, 5))]) *
           (1 + deviation);
}

void finish(Samples &samples, Random &random)
{
    scaleToPeak(samples, random.uniform(-50, -0.5));
}

Samples fromPower(Samples samples, Random &random)
{
    finish(samples, random);
    return samples;
}

Samples silence(Random &, std::size_t count, int)
{
    return Samples(count, 0.0F);
}

Samples ditherAlone(Random &random, std::size_t count, int)
{
    Samples samples(count, 0.0F);
    quantise(samples, random, 16);
    return samples;
}

Samples white(Random &random, std::size_t count, int)
{
    return fromPower(whiteNoise(random, count), random);
}

Samples pink(Random &random, std::size_t count, int sampleRate)
{
    return fromPower(pinkNoise(random, count, sampleRate), random);
}

Samples wind(Random &random, std::size_t count, int sampleRate)
{
    return fromPower(windNoise(random, count, sampleRate), random);
}

Samples mains(Random &random, std::size_t count, int sampleRate)
{
    return fromPower(hum(random, count, sampleRate), random);
}

Samples speech(Random &random, std::size_t count, int sampleRate)
{
    return fromPower(speechLike(random, count, sampleRate), random);
}

Samples music(Random &random, std::size_t count, int sampleRate)
{
    return fromPower(musicLike(random, count, sampleRate), random);
}

Samples narrowNoise(Random &random, std::size_t count, int sampleRate)
{
    Samples samples = whiteNoise(random, count);
    resonance(samples, sampleRate, bitRate(random) * (random.chance(0.5) ? 0.5 : 1.0), random.uniform(2, 50));
    return fromPower(std::move(samples), random);
}

Samples sine(Random &random, std::size_t count, int sampleRate)
{
    const double frequency =
        random.chance(0.5) ? bitRate(random) / 2 * random.integer(1, 2) : random.uniform(100, 6000);
    Samples samples(count);
    for (std::size_t n = 0; n < count; ++n)
        samples[n] = static_cast<float>(std::sin(turn * frequency * static_cast<double>(n) / sampleRate));
    return fromPower(std::move(samples), random);
}

/// Level changes by a rule: \a nextGap gives the seconds to the next one.
template <typename NextGap>
Samples twoLevels(Random &random, std::size_t count, int sampleRate, NextGap nextGap)
{
    std::vector<double> changes;
    for (double time = 0.0; time * sampleRate < static_cast<double>(count); time += nextGap())
        changes.push_back(time * sampleRate);
    return fromPower(StepRenderer(sampleRate, 40e-6).render(changes, count, 1.0), random);
}

Samples square(Random &random, std::size_t count, int sampleRate)
{
    const double gap = 1.0 / (bitRate(random) * random.integer(1, 2));
    return twoLevels(random, count, sampleRate, [gap] { return gap; });
}

Samples pulseWidths(Random &random, std::size_t count, int sampleRate)
{
    const double longGap = 1.0 / bitRate(random);
    const double shortGap = longGap / 2;
    return twoLevels(random, count, sampleRate, [&] { return random.chance(0.5) ? shortGap : longGap; });
}

/// Biphase-mark code of what \a nextBit gives.
template <typename NextBit>
Samples biphase(Random &random, std::size_t count, int sampleRate, NextBit nextBit)
{
    const double length = 1.0 / bitRate(random);
    bool middleOfOne = false;
    return twoLevels(random, count, sampleRate, [&, length]() mutable {
        if (middleOfOne) {
            middleOfOne = false;
            return length / 2;
        }
        middleOfOne = nextBit();
        return middleOfOne ? length / 2 : length;
    });
}

Samples biphaseRandom(Random &random, std::size_t count, int sampleRate)
{
    // A run of twelve ones could be part of a sync word, so that none is sent.
    int ones = 0;
    return biphase(random, count, sampleRate, [&] {
        const bool bit = ones < 11 && random.chance(0.5);
        ones = bit ? ones + 1 : 0;
        return bit;
    });
}

Samples biphaseRepeating(Random &random, std::size_t count, int sampleRate)
{
    std::bitset<bitsPerFrame> word;
    for (std::size_t i = 0; i < bitsPerFrame; ++i)
        word[i] = random.chance(0.4) && i % 8 != 0;
    std::size_t place = 0;
    return biphase(random, count, sampleRate, [&] { return word[place++ % bitsPerFrame]; });
}

/// Frames with sync words whose digits are no time, others in each frame.
Samples biphaseWithoutDigits(Random &random, std::size_t count, int sampleRate)
{
    std::bitset<bitsPerFrame> word;
    std::size_t place = 0;
    return biphase(random, count, sampleRate, [&] {
        if (place % bitsPerFrame == 0) {
            word = frameBits({}, {}, 0);
            for (std::size_t i = 0; i < 64; ++i)
                word[i] = random.chance(0.5);
        }
        return word[place++ % bitsPerFrame];
    });
}

Samples biphaseWrongSync(Random &random, std::size_t count, int sampleRate)
{
    const LtcRate rate{25, false, false};
    std::int64_t number = random.integer(0, 2000000);
    std::bitset<bitsPerFrame> word;
    std::size_t place = 0;
    return biphase(random, count, sampleRate, [&] {
        if (place % bitsPerFrame == 0) {
            word = frameBits(timeOfFrame(number++, rate), rate, 0);
            for (const std::size_t bit : {66U, 69U, 72U, 75U}) // no twelve ones in a row are left
                word[bit] = false;
        }
        return word[place++ % bitsPerFrame];
    });
}

/// Frequency-shift keying as modems send it.
Samples modem(Random &random, std::size_t count, int sampleRate)
{
    struct Standard {
        double mark, space, bits; // [Hz], [Hz], [1/s]
    };
    constexpr std::array<Standard, 6> standards{{{1270, 1070, 300},
                                                 {2225, 2025, 300},
                                                 {1200, 2200, 1200},
                                                 {1300, 2100, 1200},
                                                 {980, 1180, 300},
                                                 {1200, 2400, 2400}}};
    const Standard &standard = standards[static_cast<std::size_t>(random.integer(0, 5))];
    Samples samples(count);
    double phase = 0.0;
    double place = 1.0;
    double frequency = standard.mark;
    for (float &sample : samples) {
        place += standard.bits / sampleRate;
        if (place >= 1.0) {
            place -= 1.0;
            frequency = random.chance(0.5) ? standard.mark : standard.space;
        }
        phase += turn * frequency / sampleRate;
        sample = static_cast<float>(std::sin(phase));
    }
    return fromPower(std::move(samples), random);
}

Samples dialling(Random &random, std::size_t count, int sampleRate)
{
    constexpr std::array<double, 4> low{697, 770, 852, 941};
    constexpr std::array<double, 4> high{1209, 1336, 1477, 1633};
    const double length = random.uniform(0.06, 0.2); // [s], then as long a pause
    Samples samples(count);
    double a = 0.0;
    double b = 0.0;
    std::size_t key = 1;
    for (std::size_t n = 0; n < count; ++n) {
        const double time = static_cast<double>(n) / sampleRate;
        const auto slot = static_cast<std::size_t>(time / length);
        if (slot / 2 + 1 != key || n == 0) {
            key = slot / 2 + 1;
            a = low[static_cast<std::size_t>(random.integer(0, 3))];
            b = high[static_cast<std::size_t>(random.integer(0, 3))];
        }
        if (slot % 2 == 0)
            samples[n] = static_cast<float>(std::sin(turn * a * time) + std::sin(turn * b * time));
    }
    return fromPower(std::move(samples), random);
}

Samples clicks(Random &random, std::size_t count, int sampleRate)
{
    Samples samples(count, 0.0F);
    const bool regular = random.chance(0.5);
    const double gap = regular ? 1.0 / (bitRate(random) * random.integer(1, 2)) : random.uniform(0.0005, 0.2);
    float sign = 1.0F;
    for (double time = 0.0;;) {
        const auto n = static_cast<std::size_t>(time * sampleRate);
        if (n >= count)
            break;
        samples[n] += sign;
        sign = regular || random.chance(0.5) ? -sign : sign;
        time += regular ? gap : gap * random.uniform(0.1, 2);
    }
    return fromPower(std::move(samples), random);
}

Samples speechOverMusic(Random &random, std::size_t count, int sampleRate)
{
    Samples samples = speechLike(random, count, sampleRate);
    addAtRatio(samples, musicLike(random, count, sampleRate), random.uniform(-10, 10));
    addAtRatio(samples, pinkNoise(random, count, sampleRate), random.uniform(10, 40));
    return fromPower(std::move(samples), random);
}

} // namespace

const std::vector<OtherSound> &otherSounds()
{
    static const std::vector<OtherSound> sounds{{"silence", silence},
                                                {"dither alone", ditherAlone},
                                                {"white noise", white},
                                                {"pink noise", pink},
                                                {"wind", wind},
                                                {"hum", mains},
                                                {"speech", speech},
                                                {"music", music},
                                                {"speech over music", speechOverMusic},
                                                {"narrow noise", narrowNoise},
                                                {"sine", sine},
                                                {"square", square},
                                                {"two pulse widths", pulseWidths},
                                                {"biphase, random bits", biphaseRandom},
                                                {"biphase, repeating word", biphaseRepeating},
                                                {"biphase, sync without digits", biphaseWithoutDigits},
                                                {"biphase, digits without sync", biphaseWrongSync},
                                                {"modem", modem},
                                                {"dialling tones", dialling},
                                                {"clicks", clicks}};
    return sounds;
}

} // namespace testsignals
