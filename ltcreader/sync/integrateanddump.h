// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frontend/prewhitener.h"
#include "ltcreader/sync/clockrecovery.h"

#include <vector>

namespace ltcreader
{

/// \a samples summed over each half bit of \a clock (integrate and dump), which may be shifted by \a shift
/// [bits]. Value i belongs to half i % 2 of bit i / 2 of the clock.
std::vector<float> integrate(const std::vector<float> &samples, const Clock &clock, double shift);

/// The same of \a sound, scaled to a mean square of 1.
std::vector<float> integrateHalfBits(const FilteredSound &sound, const Clock &clock, double shift);

} // namespace ltcreader
