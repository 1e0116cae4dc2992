// SPDX-License-Identifier: MIT

// How likely the half bits of each digit are for each value, whichever polarity it begins with. The sync word
// of a frame and its neighbours gives the amplitude: where timecode pauses or fades there is no evidence for
// anything.

#include "ltcreader/verification/frameevidence.h"

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/remodulator.h"
#include "ltcreader/decision/viterbi.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr int neighbours = 2;          // to each side, whose sync words give a frame's amplitude
constexpr double polarityTrust = 0.9;  // in polarities that were decided: user bits may change
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

/// The strength at frame \a frame: that of both sides together, or of the weaker one where timecode begins or
/// ends.
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

/// The polarity in which \a part of frame \a frame begins, 1 high to -1 low, 0 where it is not known.
double polarityOf(const FrameGrid &grid, const Polarities &polarities, const std::vector<float> &levels,
                  int frame, std::size_t part)
{
    if (part == FrameUnitsPart)
        return polarityTrust * static_cast<double>(polarities.atStart[static_cast<std::size_t>(frame)]);
    if (levels.empty())
        return 0.0;
    const std::ptrdiff_t place = halvesOf(grid.frame(frame), parts[part].first) - grid.halves.data();
    return polarityTrust * static_cast<double>(levels[static_cast<std::size_t>(place)]);
}

} // namespace

PartValues valuesOf(const timecode::Label &label, bool dropFrame)
{
    return {label.frames % 10,  label.frames / 10,  dropFrame ? 1 : 0, label.seconds % 10, label.seconds / 10,
            label.minutes % 10, label.minutes / 10, label.hours % 10,  label.hours / 10};
}

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

Unexplained unexplainedBy(const std::vector<float> &levels, const FrameGrid &grid)
{
    double fit = 0.0;
    double squares = 0.0;
    double count = 0.0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (levels[i] == 0.0F || grid.halves[i] == 0.0F)
            continue;
        fit += static_cast<double>(levels[i] * grid.halves[i]);
        squares += std::pow(static_cast<double>(grid.halves[i]), 2.0);
        count += 1.0;
    }
    if (count < 1.0)
        return {};
    const double whole = squares / count - std::pow(fit / count, 2.0);
    const double added = repeatedError(grid, levels) - whole;
    return {whole, std::clamp(added / grid.frames, 0.0, whole)};
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

namespace
{

/// The first frame of \a grid that its timecode fills, where it begins late; else 0.
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

} // namespace

Evidence evidenceOf(const FrameGrid &grid, const std::vector<float> &levels)
{
    const double unexplained = unexplainedBy(levels, grid).whole;
    const Polarities polarities = findPolarities(grid);
    const bool steady = isSteady(grid);
    Evidence evidence(static_cast<std::size_t>(grid.frames));
    for (int frame = firstWholeFrame(grid); frame < grid.frames; ++frame) {
        const auto index = static_cast<std::size_t>(frame);
        const Strength strength = strengthAt(grid, frame, steady);
        const double noise = std::max(noiseBeside(strength.amplitude), unexplained);
        const double scale = strength.amplitude / noise / strength.rms;
        for (std::size_t part = 0; part < partCount; ++part) {
            const double polarity = polarityOf(grid, polarities, levels, frame, part);
            for (int value = 0; value < 1 << parts[part].width; ++value) {
                const float fit =
                    correlation(halvesOf(grid.frame(frame), parts[part].first), value, parts[part].width);
                evidence[index][part][static_cast<std::size_t>(value)] =
                    logCosh(scale * static_cast<double>(fit), polarity);
            }
        }
    }
    return evidence;
}

} // namespace ltcreader
