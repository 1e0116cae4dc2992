// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace ltcreader
{

/// \a halfBits after the filter that brings them nearest to \a levels (one for each of them, 1 or -1, 0 where
/// not known), which a first look at them decided for, scaled to a mean square of 1. What is missing stays 0.
std::vector<float> equaliseByDecision(const std::vector<float> &halfBits, const std::vector<float> &levels);

} // namespace ltcreader
