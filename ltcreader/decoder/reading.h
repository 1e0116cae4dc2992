// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/algorithm.h"
#include "timecode/timecode.h"

#include <cstdint>

namespace ltcreader
{

/// The timecode of a recording and how it was found.
struct Reading {
    timecode::Label start;                 ///< of the first sample, to the nearest frame
    bool dropFrame = false;                ///< only together with ntsc
    bool ntsc = false;                     ///< real rate is baseRate * 1000 / 1001
    int baseRate = 25;                     ///< 24, 25 or 30
    int channel = 0;                       ///< counted from 0
    std::int64_t samplesSinceMidnight = 0; ///< of the first sample, at the recording's sample rate
    double confidence = 0.0;               ///< 0 to 1: one minus the estimated chance of being wrong
    double measuredRate = 0.0;             ///< [frames/s] as recorded
    double rateError = 0.0;                ///< [ppm] of measuredRate against the real rate
    double level = 0.0;                    ///< [dBFS] of the timecode signal, RMS
    double phase = 0.0;         ///< [frames] 0 to 1: how far the first sample lies inside its frame
    int framesUsed = 0;         ///< LTC frames that the decision rests on
    std::uint32_t userBits = 0; ///< eight groups of four bits, first group in the lowest bits
    Algorithm algorithm = Algorithm::Automatic; ///< that read it; Automatic = joint detection
    bool inverted = false;                      ///< frames begin with a falling edge
};

} // namespace ltcreader
