// SPDX-License-Identifier: MIT

// Cables, capacitors and microphone inputs bend the square wave: a low-pass filter shrinks the ones, a
// high-pass filter leaves spikes. What LTC's spectrum is like is known, so where little else is in the
// recording its spectrum shows what the filter was, and the opposite filter restores the square wave. Such
// filters have the least phase that their gain allows (minimum phase); the opposite one has it too, and it
// follows from the logarithm of the gain, by way of the cepstrum (Oppenheim and Schafer).

#include "ltcreader/frontend/minimumphase.h"

#include "ltcreader/maths/fft.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr std::size_t points = 2048;        // around the circle: 0 to 25.6 kHz and back
constexpr double middleBitRate = 2150.0;    // [bits/s] of all rates
constexpr double lowestFrequency = 300.0;   // [Hz] below it LTC has too little to be measured by
constexpr double highestFrequency = 6000.0; // [Hz] above it likewise
constexpr double leastShape = 0.03;  // of the highest density: the nulls of the ideal spectrum are never met
constexpr double leastPower = 1e-30; // keeps quotients finite in silence
constexpr double mostGain = 30.0;    // [dB] more would restore noise

/// Power density of biphase mark code of random bits, up to a factor.
double timecodeDensity(double frequency)
{
    const double angle = 0.5 * std::numbers::pi * frequency / middleBitRate;
    const double shape = angle > 0.0 ? std::sin(angle) / angle : 1.0;
    return std::max(leastShape, shape * shape * std::sin(angle) * std::sin(angle));
}

/// The natural logarithm of the gain at each step; the same below and above the band that can be measured.
std::vector<double> logGains(const std::vector<double> &powers)
{
    const auto first = static_cast<std::size_t>(lowestFrequency / gainStep);
    const auto last = std::min(static_cast<std::size_t>(highestFrequency / gainStep), powers.size() - 1);
    std::vector<double> logs(points / 2 + 1);
    double middle = 0.0;
    for (std::size_t step = 0; step < logs.size(); ++step) {
        const std::size_t measured = std::clamp(step, std::min(first, last), last);
        const double density = timecodeDensity(static_cast<double>(measured) * gainStep);
        logs[step] = 0.5 * std::log(density / (powers[measured] + leastPower));
        if (measured == step)
            middle += logs[step] / static_cast<double>(last - std::min(first, last) + 1);
    }
    const double most = mostGain / 20.0 * std::numbers::ln10;
    for (double &value : logs)
        value = std::clamp(value - middle, -most, most);
    return logs;
}

} // namespace

std::vector<std::complex<float>> minimumPhaseGains(const std::vector<double> &powers)
{
    if (powers.empty())
        return {};
    const std::vector<double> logs = logGains(powers);
    Spectrum circle(points);
    for (std::size_t i = 0; i < points; ++i)
        circle[i] = static_cast<float>(logs[std::min(i, points - i)]);
    Fft &fft = Fft::ofSize(points);
    fft.backward(circle);
    // What comes before time zero is moved after it: that is what least phase means.
    for (std::size_t i = 0; i < points; ++i) {
        const float factor = i == 0 || i == points / 2 ? 1.0F : i < points / 2 ? 2.0F : 0.0F;
        circle[i] *= factor / static_cast<float>(points);
    }
    fft.forward(circle);
    std::vector<std::complex<float>> gains(points / 2 + 1);
    for (std::size_t i = 0; i < gains.size(); ++i)
        gains[i] = std::exp(circle[i]);
    return gains;
}

} // namespace ltcreader
