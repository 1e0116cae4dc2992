// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/jointdecision.h"

#include <optional>
#include <vector>

namespace ltcreader
{

/// A timecode that was read from all frames of a recording together.
struct JointReading {
    JointDecision decision;
    double startCount = 0.0;  ///< [frames] since midnight at the first sample, any sign
    double frameLength = 0.0; ///< [samples] as recorded
    FrameRate rate;           ///< with ntsc, as the speed tells
    double level = 0.0;       ///< [full scale] RMS of the timecode
    int frames = 0;           ///< complete and incomplete ones
    bool inverted = false;    ///< frames begin with a falling edge
};

/// Reads one channel whose edges cannot be seen; nothing where the reading is not beyond reasonable doubt. \a
/// samples at \a sampleRate [Hz]; \a wanted restricts the rate.
std::optional<JointReading> readJointly(const std::vector<float> &samples, int sampleRate,
                                        const std::optional<FrameRate> &wanted);

} // namespace ltcreader
