// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sync/candidate.h"

#include <vector>

namespace ltcreader
{

/// A straight line of time against bit number.
struct BitTiming {
    double start = 0.0;              ///< [filtered samples] of bit 0 of the clock
    double bitLength = 0.0;          ///< [filtered samples]
    double bitLengthDeviation = 0.0; ///< [filtered samples] standard deviation of that
};

/// Where bits lie in the sound of \a candidate, once its \a levels are decided.
BitTiming measureTiming(Candidate candidate, const std::vector<float> &levels);

/// \a candidate cut again, by the straight clock of \a line.
Candidate retimed(Candidate candidate, const BitTiming &line);

} // namespace ltcreader
