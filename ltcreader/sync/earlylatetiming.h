// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sync/candidate.h"

#include <vector>

namespace ltcreader
{

/// A straight line of time against bit number.
struct BitLine {
    double start = 0.0;          ///< [filtered samples] of bit 0 of the clock
    double slope = 0.0;          ///< [filtered samples] per bit
    double slopeDeviation = 0.0; ///< [filtered samples] per bit: standard deviation of the slope
};

/// Where bits lie in the sound of \a candidate, once its \a levels are decided.
BitLine measureTiming(Candidate candidate, const std::vector<float> &levels);

/// \a candidate cut again, by the straight clock of \a line.
Candidate retimed(Candidate candidate, const BitLine &line);

} // namespace ltcreader
