// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/numbering.h"
#include "ltcreader/sync/framesync.h"

#include <array>
#include <vector>

namespace ltcreader
{

/// The polarity of each frame, as far as sync words show it.
struct Polarities {
    std::vector<float> atStart; ///< of bit 0 of each frame: 1 high, -1 low, in between where doubtful
    std::vector<float> atSync;  ///< of the first bit of the sync word of each frame
    double amplitude = 0.0;     ///< of the sync words in half bits of mean square 1
    double syncFit = 0.0;       ///< of the sync words in half bits: their likelihood as a fit
};

/// What the polarities of \a grid may be by its sync words, the likeliest first: the same in all frames, and
/// where sync words speak against that, any.
std::vector<Polarities> possiblePolarities(const FrameGrid &grid);

/// Where the phase correction bit may be: bit 27 at 24 and 30 frames a second, bit 59 at 25, if encoders keep
/// to it. Bits before it take their polarity from the frame's start, bits after it from the frame's end.
constexpr std::array<int, 2> correctionBits{27, 59};

/// All frames of a second added up, with the polarity changes undone that its frame numbers cause.
using SecondSum = std::array<float, dataHalves>;

/// The frames of a grid added up on the assumption of a numbering.
struct CoherentAverage {
    std::vector<SecondSum> seconds;
    float unitsFit = 0.0F; ///< how well the frame numbers' units fit
    float tensFit = 0.0F;  ///< and their tens, up to the polarity after the bits between them
};

/// Adds up the frames of \a grid. \a correctionBit: one of correctionBits.
CoherentAverage averageFrames(const FrameGrid &grid, const Polarities &polarities,
                              const FrameNumbering &numbering, int correctionBit);

} // namespace ltcreader
