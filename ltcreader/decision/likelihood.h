// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ltcreader
{

// Half bits have a mean square of 1. Those of timecode with the amplitude a are taken for a or -a in
// Gaussian noise, whose variance is then 1 - a * a. The logarithm of the density of such a half bit x, at the
// level s of 1 or -1, is s * x * a / variance, up to what is the same for both levels. So the sum of s * x
// over the levels of an assumption (its fit, or correlation) becomes a log-likelihood when it is multiplied
// by a / variance.

/// Share of the power that is never taken for explained: filters, wandering speed.
constexpr double leastNoise = 0.1;

/// A fit that nothing has, worse than any.
constexpr float impossibleFit = -1e30F;

/// Variance of the noise around timecode of \a amplitude in half bits of mean square 1.
inline double noiseBeside(double amplitude)
{
    return std::max(leastNoise, 1.0 - amplitude * amplitude);
}

/// \a amplitude (0 or more) as far as it can be believed: 0.05 to 0.95. Below, likelihoods would prove
/// nothing at all; above, what is left is the recording's doing, not noise.
inline double believableAmplitude(double amplitude)
{
    return std::clamp(amplitude, 0.05, 0.95);
}

/// Log-likelihood of something that fits with \a x in one polarity and with -x in the other.
inline double logCosh(double x)
{
    return std::abs(x) + std::log1p(std::exp(-2.0 * std::abs(x))) - std::numbers::ln2;
}

} // namespace ltcreader
