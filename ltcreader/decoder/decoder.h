// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decoder/reading.h"
#include "ltcreader/edge/algorithm.h"
#include "ltcreader/frame/doubt.h"
#include "ltcreader/sound/samplesource.h"
#include "timecode/timecode.h"

#include <optional>

namespace ltcreader
{

/// What to look for.
struct Settings {
    Algorithm algorithm = Algorithm::Automatic;
    int channel = -1;        ///< channel to read, counted from 0; -1 = the best one
    double frameRate = -1.0; ///< 23.976 (or 23.98), 24, 25, 29.97 or 30 [frames/s]; -1 = any of them
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
