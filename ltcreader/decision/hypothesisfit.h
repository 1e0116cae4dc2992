// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/hypothesis.h"

namespace ltcreader
{

/// How well the frames in \a average fit their numbering, for any seconds they show.
float fitOfNumbering(const CoherentAverage &average, int correctionBit);

/// Sets fit and bits of \a hypothesis, by whose numbering \a average was made.
void evaluate(const CoherentAverage &average, Hypothesis &hypothesis);

} // namespace ltcreader
