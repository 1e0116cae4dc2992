// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/doubt.h"
#include "ltcreader/sound/samplesource.h"
#include "timecode/timecode.h"

#include <cstdint>
#include <optional>

namespace ltcreader
{

/// How the signal is turned into the square wave that LTC is.
enum class Algorithm {
    Automatic, ///< as the recording needs
    Low,       ///< level crossing with a low threshold: soft, uneven or very quiet recordings
    Mid,       ///< level crossing with a middle threshold: ordinary line recordings
    High,      ///< level crossing with a high threshold: ringing and small disturbances under a strong signal
    Slope,     ///< steepness of the signal: recordings with hum, rumble or a wandering middle
};

/// What to look for.
struct Settings {
    Algorithm algorithm = Algorithm::Automatic;
    int channel = -1;        ///< channel to read, counted from 0; -1 = the best one
    double frameRate = -1.0; ///< 23.976 (or 23.98), 24, 25, 29.97 or 30 [frames/s]; -1 = any of them
};

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

/// Nominal rate class that \a frameRate of Settings stands for; none when it is no rate of LTC.
/// dropFrame is not set: both counts of 29.97 are meant.
std::optional<timecode::Rate> rateClass(double frameRate);

/// The likeliest timecode of a recording, and what keeps it from being an answer.
struct Outcome {
    std::optional<Reading> likeliest; ///< none when nothing resembles timecode
    Doubt doubt = Doubt::NoTimecode;
};

/// Reads \a source until its timecode is proven or the part that is searched has ended. \a settings must name
/// a channel that exists and a rate that rateClass() knows.
Outcome examine(SampleSource &source, const Settings &settings);

/// The proven timecode of \a source as examine() finds it; nothing when there is none.
std::optional<Reading> readTimecode(SampleSource &source, const Settings &settings);

} // namespace ltcreader
