// SPDX-License-Identifier: MIT

// Filters in the recording's way, and notches against hum, let half bits run into their neighbours. The same
// error then repeats in every frame, and adding up frames does not lessen it. A decision that is mostly right
// gives the filter that undoes this: the one that brings the half bits nearest to the levels decided for, by
// least squares over the whole recording. It has a few dozen degrees of freedom against thousands of half
// bits, so it cannot learn single wrong digits: decided again, those come out right.

#include "ltcreader/frontend/decisiondirected.h"

#include "ltcreader/frontend/halfbitfilter.h"
#include "ltcreader/maths/toeplitz.h"
#include "ltcreader/maths/unitpower.h"

namespace ltcreader
{
namespace
{

constexpr double heldBack = 0.01;   // of the power, so that nothing is made of what is not there
constexpr double leastPower = 1e-9; // keeps quotients finite where there is nothing at all

/// The filter with the least mean square error: its normal equations hold the likeness of the half bits to
/// their neighbours on the left and that to the levels on the right (N. Wiener's filter, for sampled
/// signals).
HalfBitFilter bestFilter(const std::vector<float> &halves, const std::vector<float> &levels)
{
    HalfBitFilter likeness{}; // of the half bits to themselves, some places farther on
    HalfBitFilter aim{};      // likeness to the levels
    for (std::size_t i = 0; i + filterTaps <= halves.size(); ++i) {
        for (std::size_t tap = 0; tap < filterTaps; ++tap) {
            likeness[tap] += static_cast<double>(halves[i] * halves[i + tap]);
            aim[tap] += static_cast<double>(levels[i + filterReach] * halves[i + tap]);
        }
    }
    likeness[0] = (1.0 + heldBack) * likeness[0] + leastPower;
    return solveToeplitz(likeness, aim);
}

} // namespace

std::vector<float> equaliseByDecision(const std::vector<float> &halfBits, const std::vector<float> &levels)
{
    const HalfBitFilter filter = bestFilter(halfBits, levels);
    std::vector<float> result = halfBits;
    double squares = 0.0;
    double count = 0.0;
    for (std::size_t i = 0; i < halfBits.size(); ++i) {
        if (halfBits[i] == 0.0F)
            continue;
        const double sum = filteredAt(i, halfBits, filter);
        result[i] = static_cast<float>(sum);
        squares += sum * sum;
        count += 1.0;
    }
    scaleToUnitPower(result, squares, count);
    return result;
}

} // namespace ltcreader
