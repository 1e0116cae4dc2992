// SPDX-License-Identifier: MIT

// The sync word is the same in every frame. Its 32 half bits are known up to a common sign, so at each of the
// 160 places where a frame could end the sums over all frames are compared: with one sign for all (frames of
// an encoder that keeps the polarity steady, which most do) and with a sign of its own for each.

#include "ltcreader/syncsearch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr int syncHalves = 2 * syncBits;

/// The levels of the half bits of the sync word, the first one high.
std::array<float, syncHalves> syncLevels()
{
    std::array<float, syncHalves> levels{};
    float level = 1.0F;
    for (std::size_t bit = 0; bit < syncBits; ++bit) {
        const bool one = (syncWord >> bit & 1U) != 0;
        levels[2 * bit] = level;
        levels[2 * bit + 1] = one ? -level : level;
        level = one ? level : -level;
    }
    return levels;
}

} // namespace

FrameGrid findFrames(const HalfBits &halfBits)
{
    const std::vector<float> &values = halfBits.values;
    FrameGrid grid;
    if (values.size() < syncHalves)
        return grid;
    const std::array<float, syncHalves> levels = syncLevels();
    std::vector<float> resemblance(values.size() - syncHalves + 1);
    for (std::size_t i = 0; i < resemblance.size(); ++i) {
        float sum = 0.0F;
        for (std::size_t half = 0; half < syncHalves; ++half)
            sum += values[i + half] * levels[half];
        resemblance[i] = sum;
    }
    // Of a sum of noise of mean square 1 over a sync word, and of its magnitude.
    const double deviation = std::sqrt(static_cast<double>(syncHalves));
    const double meanMagnitude = deviation * std::sqrt(2.0 / std::numbers::pi);
    const double magnitudeDeviation = deviation * std::sqrt(1.0 - 2.0 / std::numbers::pi);
    std::size_t best = 0;
    for (std::size_t place = 0; place < std::min<std::size_t>(halvesPerFrame, resemblance.size());
         place += 2) {
        double sum = 0.0;
        double magnitudes = 0.0;
        double count = 0.0;
        for (std::size_t i = place; i < resemblance.size(); i += halvesPerFrame) {
            sum += static_cast<double>(resemblance[i]);
            magnitudes += std::abs(static_cast<double>(resemblance[i]));
            count += 1.0;
        }
        const double steady = std::abs(sum) / (deviation * std::sqrt(count));
        const double free = (magnitudes - count * meanMagnitude) / (magnitudeDeviation * std::sqrt(count));
        if (std::max(steady, free) > grid.score) {
            grid.score = std::max(steady, free);
            best = place;
        }
    }
    grid.firstHalf = static_cast<int>(best) - dataHalves;
    if (grid.firstHalf > 0)
        grid.firstHalf -= halvesPerFrame;
    const int count = static_cast<int>(values.size());
    grid.frames = (count - grid.firstHalf + halvesPerFrame - 1) / halvesPerFrame;
    grid.halves.assign(static_cast<std::size_t>(grid.frames) * halvesPerFrame, 0.0F);
    std::copy(values.begin(), values.end(), grid.halves.begin() - grid.firstHalf);
    measureSyncs(grid);
    return grid;
}

void measureSyncs(FrameGrid &grid)
{
    const std::array<float, syncHalves> levels = syncLevels();
    grid.syncs.clear();
    for (int frame = 0; frame < grid.frames; ++frame) {
        const float *sync = grid.frame(frame) + dataHalves;
        float sum = 0.0F;
        for (std::size_t half = 0; half < syncHalves; ++half)
            sum += sync[half] * levels[half];
        grid.syncs.push_back(sum);
    }
}

} // namespace ltcreader
