// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/codeword.h"
#include "timecode/timecode.h"

namespace ltcreader
{

/// A line of labels that was found in a recording: what every way of reading it gives.
struct FoundLine {
    timecode::Rate rate;
    double startCount = 0.0;      ///< [frames] since midnight at the first sample, any sign
    double frameLength = 0.0;     ///< [samples] as recorded
    double lengthDeviation = 0.0; ///< [samples] standard deviation of frameLength
    double classDoubt = 0.0;      ///< probability that 1000/1001 is wrong
    int frames = 0;               ///< that it rests on
    FrameBits bits = 0;           ///< of one of them
    bool inverted = false;        ///< frames begin with a falling edge
};

} // namespace ltcreader
