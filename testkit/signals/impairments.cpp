// SPDX-License-Identifier: MIT
#include "testkit/signals/impairments.h"

#include <algorithm>
#include <cmath>

namespace testsignals
{

namespace
{

double amplitudeOf(double decibels)
{
    return std::pow(10.0, decibels / 20.0);
}

void multiply(Samples &samples, double factor)
{
    for (float &sample : samples)
        sample *= static_cast<float>(factor);
}

void clip(Samples &samples)
{
    for (float &sample : samples)
        sample = std::clamp(sample, -1.0F, 1.0F);
}

} // namespace

double power(const Samples &samples)
{
    double sum = 0.0;
    for (const float sample : samples)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return samples.empty() ? 0.0 : sum / static_cast<double>(samples.size());
}

double largestMagnitude(const Samples &samples)
{
    double largest = 0.0;
    for (const float sample : samples)
        largest = std::max(largest, static_cast<double>(std::abs(sample)));
    return largest;
}

void scaleToPower(Samples &samples, double wanted)
{
    const double present = power(samples);
    if (present > 0.0)
        multiply(samples, std::sqrt(wanted / present));
}

void scaleToPeak(Samples &samples, double level)
{
    const double present = largestMagnitude(samples);
    if (present > 0.0)
        multiply(samples, amplitudeOf(level) / present);
}

void addAtRatio(Samples &samples, const Samples &other, double ratio)
{
    const double otherPower = power(other);
    if (otherPower <= 0.0)
        return;
    const auto factor = static_cast<float>(std::sqrt(power(samples) / otherPower) / amplitudeOf(ratio));
    for (std::size_t i = 0; i < samples.size() && i < other.size(); ++i)
        samples[i] += factor * other[i];
}

void mixAtRatio(Samples &samples, const Samples &other, double ratio)
{
    addAtRatio(samples, other, ratio);
    if (largestMagnitude(samples) > 1.0)
        scaleToPeak(samples, -0.1);
}

void quantise(Samples &samples, Random &random, int bits, bool dithered)
{
    const double steps = std::ldexp(1.0, bits - 1);
    for (float &sample : samples) {
        const double dither = dithered ? random.uniform() - random.uniform() : 0.0;
        const double value = std::round(static_cast<double>(sample) * steps + dither);
        sample = static_cast<float>(std::clamp(value, -steps, steps - 1) / steps);
    }
}

void overdrive(Samples &samples, double gain)
{
    multiply(samples, amplitudeOf(gain));
    clip(samples);
}

void automaticGain(Samples &samples, int sampleRate, double depth, double attack, double release)
{
    constexpr double target = 0.25; // of full scale, mean magnitude
    const double up = 1.0 - std::exp(-1.0 / (attack * sampleRate));
    const double down = 1.0 - std::exp(-1.0 / (release * sampleRate));
    double mean = 0.0;
    for (const float sample : samples)
        mean += static_cast<double>(std::abs(sample)) / static_cast<double>(samples.size());
    double level = std::max(mean, 1e-6) / amplitudeOf(depth);
    const double lowest = level;
    for (float &sample : samples) {
        const double magnitude = static_cast<double>(std::abs(sample));
        level += (magnitude > level ? up : down) * (magnitude - level);
        level = std::max(level, lowest); // the gain has an end
        sample = static_cast<float>(std::clamp(static_cast<double>(sample) * target / level, -1.0, 1.0));
    }
}

void ring(Samples &samples, int sampleRate, double frequency, double quality, double gain)
{
    peak(samples, sampleRate, frequency, quality, gain);
}

void addOffset(Samples &samples, double offset)
{
    for (float &sample : samples)
        sample += static_cast<float>(offset);
    clip(samples);
}

void invert(Samples &samples)
{
    multiply(samples, -1.0);
}

void makeAsymmetrical(Samples &samples, double gain)
{
    const auto factor = static_cast<float>(amplitudeOf(-gain));
    for (float &sample : samples)
        sample = sample < 0.0F ? factor * sample : sample;
}

void dropOut(Samples &samples, Random &random, int sampleRate, double share)
{
    const auto wanted = static_cast<std::size_t>(share * static_cast<double>(samples.size()));
    std::vector<bool> silent(samples.size(), false);
    for (std::size_t done = 0; done < wanted;) {
        const auto length = static_cast<std::size_t>(random.uniform(0.005, 0.1) * sampleRate);
        const auto start = static_cast<std::size_t>(random.uniform() * static_cast<double>(samples.size()));
        for (std::size_t n = start; n < std::min(start + length, samples.size()) && done < wanted; ++n) {
            done += silent[n] ? 0U : 1U;
            silent[n] = true;
            samples[n] = 0.0F;
        }
    }
}

void keepOnly(Samples &samples, int sampleRate, double begin, double end)
{
    for (std::size_t n = 0; n < samples.size(); ++n) {
        const double time = static_cast<double>(n) / sampleRate;
        if (time < begin || time >= end)
            samples[n] = 0.0F;
    }
}

void continueWith(Samples &samples, const Samples &other, int sampleRate, double time)
{
    const auto start = static_cast<std::size_t>(time * sampleRate);
    for (std::size_t n = start; n < samples.size() && n < other.size(); ++n)
        samples[n] = other[n];
}

void radioChannel(Samples &samples, int sampleRate)
{
    highPass(samples, sampleRate, 300.0, 6);
    lowPass(samples, sampleRate, 3400.0, 6);
}

} // namespace testsignals
