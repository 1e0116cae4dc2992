// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/labeldecision.h"
#include "ltcreader/frame/doubt.h"
#include "ltcreader/frame/foundline.h"
#include "ltcreader/sync/candidate.h"

#include <optional>
#include <vector>

namespace ltcreader
{

/// A timecode that was read from all frames of a recording together.
struct JointReading : FoundLine {
    LabelDecision decision;
    double level = 0.0; ///< [full scale] RMS of the timecode
};

/// The likeliest reading, and what keeps it from being an answer.
struct JointOutcome {
    std::optional<JointReading> likeliest;
    Doubt doubt = Doubt::NoTimecode;
};

/// Reads one channel whose edges cannot be seen: \a samples at \a sampleRate [Hz], of which \a candidates are
/// those that findCandidates() found. \a wanted restricts the rate.
JointOutcome readJointly(const std::vector<Candidate> &candidates, const std::vector<float> &samples,
                         int sampleRate, const std::optional<timecode::Rate> &wanted);

} // namespace ltcreader
