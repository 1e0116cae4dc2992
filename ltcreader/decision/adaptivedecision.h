// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/labeldecision.h"
#include "ltcreader/sync/candidate.h"

#include <optional>

namespace ltcreader
{

/// [log-likelihood] Beyond this margin no other way of reading is tried, and nothing needs to be learnt.
constexpr double sufficientMargin = 60.0;

/// A decision on a grid whose frames follow each other at a measured rate [frames/s].
using Decide = std::optional<LabelDecision> (*)(const FrameGrid &grid, double measuredRate);

/// A decision and what to verify it by.
struct AdaptiveDecision {
    LabelDecision decision;
    Candidate candidate; ///< without the echoes that follow from the decision
};

/// Decides by \a decide on \a candidate. Where errors repeat in every frame the decision shows what distorts
/// them, and another decision is made without that. None when there is none, or when its base is not \a
/// wanted.
std::optional<AdaptiveDecision> decideAdaptively(Decide decide, const Candidate &candidate,
                                                 const std::optional<timecode::Rate> &wanted);

} // namespace ltcreader
