// SPDX-License-Identifier: MIT
#include "ltcreader/verification/strength.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double absent = 0.35;        // of the amplitude of other frames: what is weaker holds no timecode
constexpr int neighbours = 2;          // to each side, whose sync words give a frame's amplitude
constexpr double mostAmplitude = 0.95; // beyond, what is left is the recording's doing, not noise
constexpr double begun = 0.9;          // of the amplitude behind, from which timecode has begun
constexpr double steadyShare = 0.8; // of the amplitude, from which all sync words are taken for one polarity

/// The strength of frames \a from to \a to. Where all sync words seem to have one polarity, some may still
/// have the other, as behind a jump: they count as soon as they show each by itself.
Strength strengthShown(const FrameGrid &grid, int from, int to, bool steady)
{
    constexpr double beyondChance = 3.0; // standard deviations
    const Strength together = strengthOf(grid, from, to, steady);
    const Strength each = strengthOf(grid, from, to, false);
    // The square of a sync word of noise has the mean 1 and the variance 2, in units of its half bits' power.
    const double frames = std::max(1, std::min(grid.frames, to) - std::max(0, from));
    const double chance = beyondChance * std::sqrt(2.0 / frames) / (2.0 * syncBits);
    return each.amplitude > together.amplitude && each.amplitude * each.amplitude > chance ? each : together;
}

} // namespace

Strength strengthOf(const FrameGrid &grid, int from, int to, bool steady)
{
    constexpr double halves = 2.0 * syncBits;
    double sum = 0.0;
    double squares = 0.0;
    double power = 0.0;
    double count = 0.0;
    for (int frame = std::max(0, from); frame < std::min(grid.frames, to); ++frame) {
        const auto sync = static_cast<double>(grid.syncs[static_cast<std::size_t>(frame)]);
        if (sync == 0.0)
            continue;
        sum += sync;
        squares += sync * sync;
        count += 1.0;
        for (int half = dataHalves; half < halvesPerFrame; ++half)
            power += std::pow(static_cast<double>(grid.frame(frame)[half]), 2.0) / halves;
    }
    if (count < 1.0 || !(power > 0.0))
        return {};
    const double rms = std::sqrt(power / count);
    const double noise = halves * power / count; // of the square of a sync word without timecode
    const double found = steady ? std::abs(sum) / count : std::sqrt(std::max(0.0, squares / count - noise));
    return {std::min(mostAmplitude, found / (halves * rms)), rms};
}

bool isSteady(const FrameGrid &grid)
{
    return strengthOf(grid, 0, grid.frames, true).amplitude >
           steadyShare * strengthOf(grid, 0, grid.frames, false).amplitude;
}

Strength strengthAt(const FrameGrid &grid, int frame, bool steady)
{
    const Strength before = strengthShown(grid, frame - neighbours, frame + 1, steady);
    const Strength behind = strengthShown(grid, frame, frame + neighbours + 1, steady);
    if (before.amplitude < absent * behind.amplitude && frame > 0)
        return before;
    if (behind.amplitude < absent * before.amplitude)
        return behind;
    return strengthShown(grid, frame - neighbours, frame + neighbours + 1, steady);
}

int framesBefore(const FrameGrid &grid)
{
    const bool steady = isSteady(grid);
    int before = 0;
    for (int frame = leastStretch; frame < grid.frames; ++frame) {
        const double earlier = strengthShown(grid, 0, frame, steady).amplitude;
        if (earlier < absent * strengthShown(grid, frame, grid.frames, steady).amplitude)
            before = frame;
    }
    return before;
}

int firstWholeFrame(const FrameGrid &grid)
{
    const int before = framesBefore(grid);
    const bool steady = isSteady(grid);
    const double strongest = strengthShown(grid, before, grid.frames, steady).amplitude;
    int frame = 0;
    while (frame < before && strengthShown(grid, frame, frame + 1, steady).amplitude < begun * strongest)
        ++frame;
    return frame > 0 ? frame + 1 : 0; // one whose sync word shows first may be cut
}

} // namespace ltcreader
