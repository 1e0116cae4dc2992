// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/hypothesis.h"

#include <vector>

namespace ltcreader
{

/// The square wave that follows from a hypothesis which was evaluated: for each half bit of \a grid 1 or -1,
/// in between where the polarity is doubtful, 0 where nothing is known.
std::vector<float> remodulate(const FrameGrid &grid, const Polarities &polarities,
                              const Hypothesis &hypothesis);

/// The same where of each frame only digits and sync word are known, each with the polarity that fits best.
std::vector<float> remodulateDigits(const FrameGrid &grid, const Hypothesis &hypothesis);

/// The noise for each half bit of \a grid that errors amount to which are the same in every frame: what hum,
/// filters and neighbouring bits do does not grow less by adding up frames.
double repeatedError(const FrameGrid &grid, const std::vector<float> &levels);

/// The correlation, -1 to 1, of the errors on the two sides of bit boundaries, each error with the sign of
/// its level. The nearest wrong label differs there, in two half bits, so noise of variance 1 counts 1 plus
/// this.
double boundaryCorrelation(const FrameGrid &grid, const std::vector<float> &levels);

} // namespace ltcreader
