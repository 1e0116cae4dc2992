// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decision/labeldecision.h"
#include "ltcreader/frame/doubt.h"

#include <optional>
#include <vector>

namespace ltcreader
{

/// A timecode that was read from all frames of a recording together.
struct JointReading {
    LabelDecision decision;
    double startCount = 0.0;      ///< [frames] since midnight at the first sample, any sign
    double frameLength = 0.0;     ///< [samples] as recorded
    double lengthDeviation = 0.0; ///< [samples] standard deviation of frameLength
    timecode::Rate rate;          ///< with ntsc, as the speed shows
    double classDoubt = 0.0;      ///< probability that 1000/1001 is wrong
    double level = 0.0;           ///< [full scale] RMS of the timecode
    int frames = 0;               ///< complete and incomplete ones
    bool inverted = false;        ///< frames begin with a falling edge
};

/// The likeliest reading, and what keeps it from being an answer.
struct JointOutcome {
    std::optional<JointReading> likeliest;
    Doubt doubt = Doubt::NoTimecode;
};

/// Reads one channel whose edges cannot be seen. \a samples at \a sampleRate [Hz]; \a wanted restricts the
/// rate.
JointOutcome readJointly(const std::vector<float> &samples, int sampleRate,
                         const std::optional<timecode::Rate> &wanted);

} // namespace ltcreader
