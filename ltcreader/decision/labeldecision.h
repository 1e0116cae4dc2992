// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/hypothesis.h"
#include "ltcreader/sync/framesync.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ltcreader
{

/// The timecode that explains all frames of a grid together best.
struct LabelDecision {
    timecode::Rate rate;            ///< base and dropFrame; ntsc is left to the speed
    std::int64_t count = 0;         ///< [frames] since midnight of frame 0 of the grid
    FrameBits bits = 0;             ///< of frame 0, without its phase correction bit
    double margin = 0.0;            ///< log-likelihood ratio against all other timecodes together
    double significance = 0.0;      ///< fit in standard deviations of what one fixed guess has in noise
    double amplitude = 0.0;         ///< of the timecode in half bits of mean square 1, 0 to 1
    double syncAmplitude = 0.0;     ///< the same, from the sync words alone
    bool steadyBits = false;        ///< all bits were decided; else only digits were
    double repetition = 0.0;        ///< of errors in every frame: about 1 by chance alone
    std::vector<Hypothesis> rivals; ///< the nearest other timecodes, where steadyBits
    Polarities polarities;          ///< of the frames, where steadyBits
    std::vector<float> levels;      ///< of all half bits of the grid, 1 or -1 (0 where not known), as decided
};

/// Whether \a a and \a b decide for the same count of the same base.
bool isSame(const LabelDecision &a, const LabelDecision &b);

/// Decides on \a grid, whose frames follow each other at \a measuredRate [frames/s].
/// User bits are taken to stand still.
std::optional<LabelDecision> decideTimecode(const FrameGrid &grid, double measuredRate);

/// Rate, count and bits of the timecode that the evaluated hypothesis \a best means for \a frames frames;
/// none when its digits are no time of day.
std::optional<LabelDecision> decisionFor(const Hypothesis &best, int frames);

} // namespace ltcreader
