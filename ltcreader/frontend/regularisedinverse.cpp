// SPDX-License-Identifier: MIT

// Weights that keep rumble or music out also bend the square wave: where low frequencies are missing, a half
// bit takes something away from its neighbours, and runs of zeros shrink while runs of ones do not. Sums over
// half bits then favour wrong bits. The weights are known, so the response of half bits to each other is
// known too, and a short zero-forcing filter that inverts it (regularised: a little is held back, so that
// what is lost is not made of noise) puts zeros and ones on an equal footing.

#include "ltcreader/frontend/regularisedinverse.h"

#include "ltcreader/frontend/halfbitfilter.h"
#include "ltcreader/maths/toeplitz.h"
#include "ltcreader/maths/unitpower.h"

#include <cmath>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr double heldBack = 0.1; // of the response of a half bit to itself

using Response = std::array<double, filterTaps>; // of half bits 0, 1, 2... farther on

/// The response of half bits of \a halfBit [s] to each other: the inverse Fourier transform of \a weights
/// times the power spectrum of a pulse of that length.
Response responseOf(const std::vector<double> &weights, double halfBit)
{
    Response response{};
    for (std::size_t step = 1; step < weights.size(); ++step) {
        const double angle = std::numbers::pi * static_cast<double>(step) * weightStep * halfBit;
        const double shape = std::sin(angle) / angle; // of a half bit
        for (std::size_t lag = 0; lag < filterTaps; ++lag) {
            response[lag] += weights[step] * shape * shape * std::cos(2.0 * angle * static_cast<double>(lag));
        }
    }
    return response;
}

HalfBitFilter invert(Response response)
{
    HalfBitFilter aim{};
    aim[filterReach] = response[0];
    response[0] += heldBack * response[0];
    return solveToeplitz(response, aim);
}

} // namespace

std::vector<float> equaliseByInverse(const std::vector<float> &halfBits, const FilteredSound &sound,
                                     double halfBit)
{
    const Response response = responseOf(sound.weights, halfBit);
    if (!(response[0] > 0.0))
        return halfBits;
    const HalfBitFilter filter = invert(response);
    std::vector<float> result(halfBits.size());
    double squares = 0.0;
    for (std::size_t i = 0; i < halfBits.size(); ++i) {
        const double sum = filteredAt(i, halfBits, filter);
        result[i] = static_cast<float>(sum);
        squares += sum * sum;
    }
    scaleToUnitPower(result, squares, static_cast<double>(halfBits.size()));
    return result;
}

} // namespace ltcreader
