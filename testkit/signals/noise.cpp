// SPDX-License-Identifier: MIT
#include "testkit/signals/noise.h"

#include "testkit/signals/impairments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace testsignals
{

namespace
{

constexpr double turn = 2 * std::numbers::pi;

struct Vowel {
    std::array<double, 3> formants; // [Hz]
};
constexpr std::array<Vowel, 6> vowels{{{{730, 1090, 2440}},
                                       {{270, 2290, 3010}},
                                       {{300, 870, 2240}},
                                       {{530, 1840, 2480}},
                                       {{570, 840, 2410}},
                                       {{490, 1350, 1690}}}};

/// One syllable: a train of glottal pulses with a falling pitch through three formants.
Samples voiced(Random &random, std::size_t count, int sampleRate, double pitch)
{
    Samples source(count, 0.0F);
    double phase = random.uniform();
    const double fall = random.uniform(-0.25, 0.1);
    for (std::size_t n = 0; n < count; ++n) {
        const double progress = static_cast<double>(n) / static_cast<double>(count);
        phase += pitch * (1 + fall * progress) * (1 + 0.01 * random.gaussian()) / sampleRate;
        phase -= std::floor(phase);
        const double opening = phase < 0.6 ? phase / 0.6 : (1 - phase) / 0.4;
        source[n] = static_cast<float>(opening * opening - 0.33);
    }
    const Vowel &vowel = vowels[static_cast<std::size_t>(random.integer(0, 5))];
    Samples sum(count, 0.0F);
    double gain = 1.0;
    for (const double formant : vowel.formants) {
        Samples part = source;
        resonance(part, sampleRate, std::min(formant * random.uniform(0.9, 1.1), 0.4 * sampleRate), 8.0);
        for (std::size_t n = 0; n < count; ++n)
            sum[n] += static_cast<float>(gain) * part[n];
        gain *= 0.6;
    }
    return sum;
}

Samples hiss(Random &random, std::size_t count, int sampleRate)
{
    Samples samples = whiteNoise(random, count);
    resonance(samples, sampleRate, std::min(random.uniform(2500, 7000), 0.4 * sampleRate), 1.0);
    return samples;
}

void addWithFades(Samples &sum, const Samples &part, std::size_t start, double gain)
{
    const double last = static_cast<double>(part.size());
    for (std::size_t n = 0; n < part.size() && start + n < sum.size(); ++n) {
        const double envelope = std::sin(std::numbers::pi * static_cast<double>(n) / last);
        sum[start + n] += static_cast<float>(gain * std::sqrt(envelope)) * part[n];
    }
}

/// A decaying note with harmonics.
void addNote(Samples &sum, int sampleRate, std::size_t start, double frequency, double decay,
             double brightness, double gain)
{
    for (int harmonic = 1; harmonic <= 12 && harmonic * frequency < 0.45 * sampleRate; ++harmonic) {
        const double step = turn * harmonic * frequency / sampleRate;
        double amplitude = gain * std::pow(brightness, harmonic - 1);
        const double fade = std::exp(-1.0 / (decay / (1 + 0.2 * harmonic) * sampleRate));
        for (std::size_t n = start; n < sum.size() && amplitude > 1e-4 * gain; ++n) {
            sum[n] += static_cast<float>(amplitude * std::sin(step * static_cast<double>(n - start)));
            amplitude *= fade;
        }
    }
}

void addDrum(Samples &sum, Random &random, int sampleRate, std::size_t start, double highest, double decay,
             double gain)
{
    const auto length = std::min(sum.size() - start, static_cast<std::size_t>(6 * decay * sampleRate));
    Samples beat = whiteNoise(random, length);
    lowPass(beat, sampleRate, highest, 2);
    for (std::size_t n = 0; n < length; ++n)
        sum[start + n] +=
            static_cast<float>(gain * std::exp(-static_cast<double>(n) / (decay * sampleRate))) * beat[n];
}

double noteFrequency(int semitonesAboveA)
{
    return 440.0 * std::pow(2.0, semitonesAboveA / 12.0);
}

} // namespace

Samples whiteNoise(Random &random, std::size_t count)
{
    Samples samples(count);
    for (float &sample : samples)
        sample = static_cast<float>(random.gaussian());
    return samples;
}

Samples pinkNoise(Random &random, std::size_t count, int sampleRate)
{
    Samples samples = whiteNoise(random, count);
    // Poles and zeros in turn, two octaves from pole to pole, make a slope of half of a low-pass's.
    const double lowestPole = 10.0; // [Hz]
    const int poles = static_cast<int>(std::ceil(std::log2(0.4 * sampleRate / lowestPole) / 2));
    for (int i = 0; i < poles; ++i) {
        const double pole = lowestPole * std::pow(4.0, i);
        const double poleDecay = std::exp(-turn * pole / sampleRate);
        const double zeroDecay = std::exp(-turn * 2 * pole / sampleRate);
        double previous = 0.0;
        double output = 0.0;
        for (float &sample : samples) {
            const double input = static_cast<double>(sample);
            output = poleDecay * output + input - zeroDecay * previous;
            previous = input;
            sample = static_cast<float>(output);
        }
    }
    scaleToPower(samples, 1.0);
    return samples;
}

Samples windNoise(Random &random, std::size_t count, int sampleRate)
{
    Samples samples = whiteNoise(random, count);
    lowPass(samples, sampleRate, 60.0, 2);
    const double gust = random.uniform(0.3, 1.2);
    const double phase = random.uniform(0, turn);
    for (std::size_t n = 0; n < count; ++n) {
        const double swell = std::sin(turn * gust * static_cast<double>(n) / sampleRate + phase);
        samples[n] *= static_cast<float>(0.4 + 0.6 * swell * swell);
    }
    scaleToPower(samples, 1.0);
    return samples;
}

Samples hum(Random &random, std::size_t count, int sampleRate)
{
    const double mains = (random.chance(0.5) ? 50.0 : 60.0) + random.uniform(-0.1, 0.1);
    const double slope = random.uniform(1.5, 2.5);
    Samples samples(count, 0.0F);
    for (int harmonic = 1; harmonic <= 40 && harmonic * mains < 0.45 * sampleRate; ++harmonic) {
        const double amplitude = std::pow(harmonic, -slope);
        const double phase = random.uniform(0, turn);
        const double step = turn * harmonic * mains / sampleRate;
        for (std::size_t n = 0; n < count; ++n)
            samples[n] += static_cast<float>(amplitude * std::sin(step * static_cast<double>(n) + phase));
    }
    scaleToPower(samples, 1.0);
    return samples;
}

Samples speechLike(Random &random, std::size_t count, int sampleRate)
{
    Samples sum(count, 0.0F);
    const double voice = random.uniform(90, 240);
    const auto samplesIn = [sampleRate](double seconds) {
        return static_cast<std::size_t>(seconds * sampleRate);
    };
    for (std::size_t start = samplesIn(random.uniform(0, 0.1)); start < count;) {
        if (random.chance(0.4)) {
            const Samples part = hiss(random, samplesIn(random.uniform(0.04, 0.12)), sampleRate);
            addWithFades(sum, part, start, random.uniform(0.05, 0.3));
            start += part.size();
        }
        const double pitch = voice * random.uniform(0.8, 1.3);
        const Samples part = voiced(random, samplesIn(random.uniform(0.1, 0.3)), sampleRate, pitch);
        addWithFades(sum, part, start, random.uniform(1.5, 4));
        start += part.size() + samplesIn(random.chance(0.15) ? random.uniform(0.1, 0.4) : 0.01);
    }
    scaleToPower(sum, 1.0);
    return sum;
}

Samples musicLike(Random &random, std::size_t count, int sampleRate)
{
    Samples sum(count, 0.0F);
    const double beat = 60.0 / random.uniform(80, 150); // [s]
    const double brightness = random.uniform(0.4, 0.8);
    constexpr std::array<std::array<int, 3>, 4> chords{{{0, 4, 7}, {-3, 0, 4}, {5, 9, 12}, {7, 11, 14}}};
    int number = random.integer(0, 15);
    for (double time = 0.0;; time += beat / 2, ++number) {
        const auto start = static_cast<std::size_t>(time * sampleRate);
        if (start >= count)
            break;
        const auto &chord = chords[static_cast<std::size_t>(number / 8 % 4)];
        if (number % 8 == 0) {
            for (const int note : chord)
                addNote(sum, sampleRate, start, noteFrequency(note - 12), 0.8, brightness, 0.3);
        }
        const int melody = chord[static_cast<std::size_t>(random.integer(0, 2))];
        addNote(sum, sampleRate, start, noteFrequency(melody + 12 * random.integer(0, 1)), 0.3, brightness,
                0.25);
        addNote(sum, sampleRate, start, noteFrequency(chord[0] - 36), 0.3, 0.5, 0.5);
        addDrum(sum, random, sampleRate, start, 9000, 0.02, 0.15);
        if (number % 4 == 0)
            addDrum(sum, random, sampleRate, start, 120, 0.08, 3.0);
        else if (number % 4 == 2)
            addDrum(sum, random, sampleRate, start, 4000, 0.06, 0.5);
    }
    scaleToPower(sum, 1.0);
    return sum;
}

} // namespace testsignals
