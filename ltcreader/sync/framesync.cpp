// SPDX-License-Identifier: MIT

// The sync word is the same in every frame. Its 32 half bits are known up to a common sign, so at each of the
// 80 places where a frame could end the sums over all frames are compared: with one sign for all (frames of
// an encoder that keeps the polarity steady, which most do) and with a sign of its own for each. What is
// periodic scores at many places, so the peak is compared with its sidelobes, too.

#include "ltcreader/sync/framesync.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr std::size_t syncHalves = 2 * std::size_t{syncBits};

/// The levels of the half bits of the sync word, the first one high.
constexpr std::array<float, syncHalves> syncLevels = [] {
    std::array<float, syncHalves> levels{};
    float level = 1.0F;
    for (std::size_t bit = 0; bit < syncBits; ++bit) {
        const bool one = (syncWord >> bit & 1U) != 0;
        levels[2 * bit] = level;
        levels[2 * bit + 1] = one ? -level : level;
        level = one ? level : -level;
    }
    return levels;
}();

/// How clearly the sync words show that begin at \a place and every frame after it, in standard deviations of
/// what chance brings; the better of one sign for all and a sign for each.
double scoreAt(std::size_t place, const std::vector<float> &correlations)
{
    // Of a sum of noise of mean square 1 over a sync word, and of its magnitude (half-normal distribution).
    const double deviation = std::sqrt(static_cast<double>(syncHalves));
    const double meanMagnitude = deviation * std::sqrt(2.0 / std::numbers::pi);
    const double magnitudeDeviation = deviation * std::sqrt(1.0 - 2.0 / std::numbers::pi);
    double sum = 0.0;
    double magnitudes = 0.0;
    double count = 0.0;
    for (std::size_t i = place; i < correlations.size(); i += halvesPerFrame) {
        sum += static_cast<double>(correlations[i]);
        magnitudes += std::abs(static_cast<double>(correlations[i]));
        count += 1.0;
    }
    const double steady = std::abs(sum) / (deviation * std::sqrt(count));
    const double free = (magnitudes - count * meanMagnitude) / (magnitudeDeviation * std::sqrt(count));
    return std::max(steady, free);
}

} // namespace

float syncCorrelation(const float *halves)
{
    float sum = 0.0F;
    for (std::size_t half = 0; half < syncHalves; ++half)
        sum += halves[half] * syncLevels[half];
    return sum;
}

FrameGrid cutIntoFrames(const std::vector<float> &values, std::size_t syncPlace)
{
    FrameGrid grid;
    grid.firstHalf = static_cast<int>(syncPlace) - dataHalves;
    if (grid.firstHalf > 0)
        grid.firstHalf -= halvesPerFrame;
    const int count = static_cast<int>(values.size());
    grid.frames = (count - grid.firstHalf + halvesPerFrame - 1) / halvesPerFrame;
    grid.halves.assign(static_cast<std::size_t>(grid.frames) * halvesPerFrame, 0.0F);
    std::copy(values.begin(), values.end(), grid.halves.begin() - grid.firstHalf);
    measureSyncs(grid);
    return grid;
}

FrameGrid findFrames(const std::vector<float> &halfBits)
{
    if (halfBits.size() < syncHalves)
        return {};
    std::vector<float> correlations(halfBits.size() - syncHalves + 1);
    for (std::size_t i = 0; i < correlations.size(); ++i)
        correlations[i] = syncCorrelation(halfBits.data() + i);
    const auto places = std::min<std::size_t>(halvesPerFrame, correlations.size());
    std::size_t best = 0;
    double score = 0.0;
    double squares = 0.0;
    for (std::size_t place = 0; place < places; place += 2) { // bits begin at every second half
        const double found = scoreAt(place, correlations);
        squares += found * found;
        if (found > score) {
            score = found;
            best = place;
        }
    }
    FrameGrid grid = cutIntoFrames(halfBits, best);
    grid.score = score;
    grid.sidelobes = std::sqrt((squares - score * score) / (bitsPerFrame - 1.0));
    return grid;
}

void measureSyncs(FrameGrid &grid)
{
    grid.syncs.clear();
    for (int frame = 0; frame < grid.frames; ++frame)
        grid.syncs.push_back(syncCorrelation(grid.frame(frame) + dataHalves));
}

} // namespace ltcreader
