// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ltcreader
{

/// The sums of the first 0, 1, 2... of what \a of makes of each of \a values.
template <typename Value, typename Of>
std::vector<double> runningSums(const std::vector<Value> &values, Of of)
{
    std::vector<double> sums(values.size() + 1);
    for (std::size_t i = 0; i < values.size(); ++i)
        sums[i + 1] = sums[i] + static_cast<double>(of(values[i]));
    return sums;
}

/// The sums of the first 0, 1, 2... of \a values.
inline std::vector<double> runningSums(const std::vector<float> &values)
{
    return runningSums(values, [](float value) { return value; });
}

/// From running \a sums the mean of the values around place \a place, \a reach to each side as far as there
/// are any.
inline double meanAround(const std::vector<double> &sums, std::size_t place, std::size_t reach)
{
    const std::size_t from = place > reach ? place - reach : 0;
    const std::size_t to = std::min(sums.size() - 1, place + reach + 1);
    return (sums[to] - sums[from]) / static_cast<double>(to - from);
}

} // namespace ltcreader
