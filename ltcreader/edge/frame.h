// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/codeword.h"

namespace ltcreader
{

/// One LTC frame as it was found in the recording.
struct Frame {
    FrameBits bits = 0;
    double start = 0.0;        ///< [samples] since the start of the recording
    double end = 0.0;          ///< [samples] start of the frame that follows
    double rmsJitter = 0.0;    ///< [bits] root mean square distance of its edges from where they belong
    double peakJitter = 0.0;   ///< [bits] of a single bit: one edge that is off can change a digit
    bool startsRising = false; ///< polarity of its first edge
};

} // namespace ltcreader
