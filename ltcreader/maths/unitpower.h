// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <vector>

namespace ltcreader
{

/// Scales \a values, \a count of which count and have squares that add up to \a squares, to a mean square of
/// 1; to nothing where there are none.
inline void scaleToUnitPower(std::vector<float> &values, double squares, double count)
{
    const auto scale = static_cast<float>(squares > 0.0 ? std::sqrt(count / squares) : 0.0);
    for (float &value : values)
        value *= scale;
}

} // namespace ltcreader
