// SPDX-License-Identifier: MIT
#include "ltcreader/verification/beginning.h"

#include "ltcreader/sync/integrateanddump.h"
#include "ltcreader/verification/strength.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ltcreader
{
namespace
{

constexpr double otherPhase = 5.5; // [standard deviations] of sync words that lie elsewhere
constexpr double hiding = 1.2;     // times the level of the recording: sound enough to hide other labels
constexpr double shows = 0.6;      // of the amplitude of the frames behind: a frame's own sync word is there

/// Whether sync words show somewhere in \a count half bits that begin at \a halves.
bool hasSyncWords(const float *halves, std::size_t count)
{
    constexpr std::size_t syncHalves = 2 * std::size_t{syncBits};
    for (std::size_t place = 0; place < halvesPerFrame; ++place) {
        double sum = 0.0;
        double squares = 0.0;
        double used = 0.0;
        for (std::size_t i = place; i + syncHalves <= count; i += halvesPerFrame) {
            const auto fit = static_cast<double>(syncCorrelation(halves + i));
            sum += fit;
            squares += fit * fit;
            used += fit != 0.0 ? 1.0 : 0.0;
        }
        used = std::max(1.0, used);
        const double steady = std::abs(sum) / std::sqrt(used * static_cast<double>(syncHalves));
        // The cube root of a chi-square sum is nearly normal (Wilson and Hilferty).
        const double spread = 2.0 / (9.0 * used);
        const double root = std::cbrt(squares / (static_cast<double>(syncHalves) * used));
        const double free = (root - (1.0 - spread)) / std::sqrt(spread);
        if (std::max(steady, free) > otherPhase)
            return true;
    }
    return false;
}

} // namespace

double levelBetween(const std::vector<float> &samples, double from, double to)
{
    double squares = 0.0;
    double count = 0.0;
    for (auto i = static_cast<std::size_t>(std::max(0.0, from));
         i < samples.size() && static_cast<double>(i) < to; ++i) {
        squares += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
        count += 1.0;
    }
    return std::sqrt(squares / std::max(1.0, count));
}

bool isPrecededByAnother(const FrameGrid &grid, const FilteredSound &sound, const Clock &clock)
{
    const int before = framesBefore(grid);
    const double strongest = strengthOf(grid, before, grid.frames, false).amplitude;
    int end = 0; // of the frames in which nothing shows where it should
    while (end < before && strengthOf(grid, end, end + 1, true).amplitude < shows * strongest)
        ++end;
    if (end < leastStretch)
        return false;
    // Half way between half bits those of a one cancel out: what begins there shows only in a second look.
    const std::vector<float> between = integrateHalfBits(sound, clock, 0.25);
    const auto count = static_cast<std::size_t>(end) * halvesPerFrame;
    return hasSyncWords(grid.halves.data(), count) ||
           hasSyncWords(between.data(), std::min(between.size(), count));
}

bool isMaskedBefore(const FrameGrid &grid, const std::vector<float> &samples, double frameLength)
{
    const int frames = framesBefore(grid);
    const double before = frames * frameLength;
    return frames > leastStretch &&
           levelBetween(samples, 0.0, before) >
               hiding * levelBetween(samples, before, static_cast<double>(samples.size()));
}

} // namespace ltcreader
