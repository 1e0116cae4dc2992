// SPDX-License-Identifier: MIT
#include "testkit/signals/steps.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace testsignals
{

namespace
{

constexpr int pointsPerSample = 64;   // linear interpolation between them errs below -85 dB
constexpr double cutoff = 0.46;       // [cycles/sample] leaves room for the slope of the window
constexpr double sincHalfWidth = 24;  // [samples]
constexpr double rampOverRise = 1.69; // a raised cosine takes 0.59 of its length from 10 % to 90 %

/// Low-pass of unit area, windowed by a four-term cosine; \a x in samples.
double lowPass(double x)
{
    if (std::abs(x) >= sincHalfWidth)
        return 0.0;
    const double phase = std::numbers::pi * (x / sincHalfWidth + 1.0);
    const double window =
        0.35875 - 0.48829 * std::cos(phase) + 0.14128 * std::cos(2 * phase) - 0.01168 * std::cos(3 * phase);
    const double angle = 2 * std::numbers::pi * cutoff * x;
    return 2 * cutoff * window * (std::abs(angle) < 1e-9 ? 1.0 : std::sin(angle) / angle);
}

/// Speed of the raised-cosine ramp of length \a ramp, as weights for points around its middle.
std::vector<double> rampWeights(double ramp)
{
    const auto half = static_cast<std::size_t>(std::ceil(ramp / 2 * pointsPerSample));
    if (half == 0)
        return {1.0};
    std::vector<double> weights(2 * half + 1);
    double sum = 0.0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const double x = (static_cast<double>(i) - static_cast<double>(half)) / pointsPerSample / ramp;
        weights[i] = std::abs(x) < 0.5 ? std::cos(std::numbers::pi * x) : 0.0;
        sum += weights[i];
    }
    for (double &weight : weights)
        weight /= sum;
    return weights;
}

} // namespace

StepRenderer::StepRenderer(int sampleRate, double riseTime)
{
    const std::vector<double> weights = rampWeights(riseTime * rampOverRise * sampleRate);
    const std::size_t rampPoints = weights.size() / 2;
    const auto sincPoints = static_cast<std::size_t>(sincHalfWidth * pointsPerSample);
    halfWidth = static_cast<double>(sincPoints + rampPoints) / pointsPerSample;

    std::vector<double> impulse(2 * (sincPoints + rampPoints) + 1, 0.0);
    for (std::size_t i = 0; i <= 2 * sincPoints; ++i) {
        const double x = (static_cast<double>(i) - static_cast<double>(sincPoints)) / pointsPerSample;
        const double value = lowPass(x);
        for (std::size_t k = 0; k < weights.size(); ++k)
            impulse[i + k] += value * weights[k];
    }
    table.resize(impulse.size());
    double sum = 0.0;
    for (std::size_t i = 0; i < impulse.size(); ++i) {
        const double previous = i == 0 ? 0.0 : impulse[i - 1];
        sum += (previous + impulse[i]) / 2; // the trapezoid rule keeps the middle of the step in the middle
        table[i] = sum;
    }
    for (double &value : table)
        value /= sum;
}

double StepRenderer::stepAt(double distance) const
{
    const double place = (distance + halfWidth) * pointsPerSample;
    if (place <= 0.0)
        return 0.0;
    const auto index = static_cast<std::size_t>(place);
    if (index + 1 >= table.size())
        return 1.0;
    const double fraction = place - static_cast<double>(index);
    return table[index] + fraction * (table[index + 1] - table[index]);
}

std::vector<float> StepRenderer::render(const std::vector<double> &positions, std::size_t count,
                                        double height) const
{
    std::vector<double> sum(count, 0.0);
    std::vector<float> samples(count);
    const auto end = static_cast<double>(count);

    // Each level change is drawn as its difference from a sharp one; the sharp ones are added up on the way.
    double sign = 1.0;
    for (const double position : positions) {
        const auto first = static_cast<std::size_t>(std::max(0.0, std::ceil(position - halfWidth)));
        const auto behind =
            static_cast<std::size_t>(std::clamp(std::floor(position + halfWidth) + 1, 0.0, end));
        for (std::size_t n = first; n < behind; ++n) {
            const double distance = static_cast<double>(n) - position;
            const double sharp = distance >= 0.0 ? 1.0 : 0.0;
            sum[n] += sign * 2 * (stepAt(distance) - sharp);
        }
        sign = -sign;
    }

    std::size_t passed = 0;
    for (std::size_t n = 0; n < count; ++n) {
        while (passed < positions.size() && positions[passed] <= static_cast<double>(n))
            ++passed;
        const double level = passed % 2 == 1 ? 1.0 : -1.0;
        samples[n] = static_cast<float>(height * (level + sum[n]));
    }
    return samples;
}

} // namespace testsignals
