// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/framefold.h"
#include "ltcreader/decision/hypothesis.h"

namespace ltcreader
{

/// How well the frames in \a fold fit their numbering, for any seconds they show.
float fitOfNumbering(const FrameFold &fold, int correctionBit);

/// Sets fit and bits of \a hypothesis, by whose numbering \a fold was made.
void evaluate(const FrameFold &fold, Hypothesis &hypothesis);

} // namespace ltcreader
