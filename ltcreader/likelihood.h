// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <numbers>

namespace ltcreader
{

/// Log-likelihood of something that fits with \a x in one polarity and with -x in the other, where both are
/// equally likely; log(cosh(x)) without overflow.
inline double logCosh(double x)
{
    const double magnitude = std::abs(x);
    return magnitude + std::log1p(std::exp(-2.0 * magnitude)) - std::numbers::ln2;
}

} // namespace ltcreader
