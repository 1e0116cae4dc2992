// SPDX-License-Identifier: MIT
#include "ltcreader/sync/integrateanddump.h"

#include "ltcreader/maths/runningsums.h"
#include "ltcreader/maths/unitpower.h"

#include <algorithm>

namespace ltcreader
{

std::vector<float> integrate(const std::vector<float> &samples, const Clock &clock, double shift)
{
    const auto length = static_cast<double>(samples.size());
    const std::vector<double> sums = runningSums(samples);
    // A sample covers the time from half a sample before it to half a sample after it.
    const auto sumUpTo = [&](double position) {
        const double place = std::clamp(position + 0.5, 0.0, length);
        const auto index = std::min(static_cast<std::size_t>(place), samples.size() - 1);
        return sums[index] + (place - static_cast<double>(index)) * (sums[index + 1] - sums[index]);
    };
    std::vector<float> result;
    const auto count = static_cast<std::size_t>(2.0 * (length / clock.bitLength + 2.0));
    result.reserve(count);
    double before = sumUpTo(clock.position(shift));
    for (std::size_t i = 0; i < count; ++i) {
        const double after = sumUpTo(clock.position(shift + 0.5 * static_cast<double>(i + 1)));
        result.push_back(static_cast<float>(after - before));
        before = after;
    }
    return result;
}

std::vector<float> integrateHalfBits(const FilteredSound &sound, const Clock &clock, double shift)
{
    std::vector<float> result = integrate(sound.samples, clock, shift);
    double squares = 0.0;
    for (const float half : result)
        squares += static_cast<double>(half) * static_cast<double>(half);
    scaleToUnitPower(result, squares, static_cast<double>(result.size()));
    return result;
}

} // namespace ltcreader
