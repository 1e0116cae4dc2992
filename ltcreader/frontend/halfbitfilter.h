// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace ltcreader
{

/// Half bits to each side: what a filter of the recording smears, and a little.
constexpr std::size_t filterReach = 10;
constexpr std::size_t filterTaps = 2 * filterReach + 1;

/// Weights of a half bit, in the middle, and of its neighbours on both sides.
using HalfBitFilter = std::array<double, filterTaps>;

/// What \a filter makes of half bit \a place of \a halves; beyond their ends there is nothing.
inline double filteredAt(std::size_t place, const std::vector<float> &halves, const HalfBitFilter &filter)
{
    double sum = 0.0;
    for (std::size_t tap = 0; tap < filterTaps; ++tap) {
        if (place + tap >= filterReach && place + tap - filterReach < halves.size())
            sum += filter[tap] * static_cast<double>(halves[place + tap - filterReach]);
    }
    return sum;
}

} // namespace ltcreader
