// SPDX-License-Identifier: MIT

// How likely the half bits of each digit are for each value, whichever polarity it begins with. The sync word
// of a frame and its neighbours gives the amplitude: where timecode pauses or fades there is no evidence for
// anything.

#include "ltcreader/verification/frameevidence.h"

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/remodulator.h"
#include "ltcreader/decision/viterbi.h"
#include "ltcreader/verification/strength.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double polarityTrust = 0.9; // in polarities that were decided: user bits may change

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
