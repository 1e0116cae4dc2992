// SPDX-License-Identifier: MIT
#include "ltcreader/sync/integrateanddump.h"

#include "ltcreader/maths/runningsums.h"
#include "ltcreader/maths/unitpower.h"

#include <algorithm>

namespace ltcreader
{

std::vector<float> integrateHalfBits(const FilteredSound &sound, const Clock &clock, double shift)
{
    const auto length = static_cast<double>(sound.samples.size());
    const std::vector<double> sums = runningSums(sound.samples);
    // A sample stands for the time from half a sample before it to half a sample after it.
    const auto sumUpTo = [&](double position) {
        const double place = std::clamp(position + 0.5, 0.0, length);
        const auto index = std::min(static_cast<std::size_t>(place), sound.samples.size() - 1);
        return sums[index] + (place - static_cast<double>(index)) * (sums[index + 1] - sums[index]);
    };
    std::vector<float> result;
    const auto count = static_cast<std::size_t>(2.0 * (length / clock.bitLength + 2.0));
    result.reserve(count);
    double before = sumUpTo(clock.position(shift));
    double squares = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double after = sumUpTo(clock.position(shift + 0.5 * static_cast<double>(i + 1)));
        result.push_back(static_cast<float>(after - before));
        squares += (after - before) * (after - before);
        before = after;
    }
    scaleToUnitPower(result, squares, static_cast<double>(count));
    return result;
}

} // namespace ltcreader
