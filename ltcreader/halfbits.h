// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/clocksearch.h"
#include "ltcreader/conditioner.h"

#include <vector>

namespace ltcreader
{

/// The sound of a recording summed over each half bit, scaled to a mean square of 1.
struct HalfBits {
    std::vector<float> values; ///< value i belongs to half i % 2 of bit i / 2 of the clock
};

/// Sums \a sound by \a clock, which may be shifted by \a shift [bits].
HalfBits sumHalfBits(const Conditioned &sound, const Clock &clock, double shift);

} // namespace ltcreader
