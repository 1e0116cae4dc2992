// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/labeldecision.h"

#include <optional>

namespace ltcreader
{

/// Decides as decideTimecode() does, but from nothing but the digits and sync words: for recordings whose
/// user bits change from frame to frame. Reads less deep in noise. The user bits of the decision are 0.
std::optional<LabelDecision> decideByDigits(const FrameGrid &grid, double measuredRate);

} // namespace ltcreader
