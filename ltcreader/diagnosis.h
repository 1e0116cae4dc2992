// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/doubt.h"
#include "ltcreader/sound/samplesource.h"

#include <array>
#include <string>
#include <vector>

namespace ltcreader
{

/// What the beginning of one channel looks like to a user who wonders about its timecode.
struct Diagnosis {
    double peak = 0.0;               ///< [full scale]
    double level = 0.0;              ///< [full scale] RMS without the mean
    double clipped = 0.0;            ///< share of samples at the recording's own extremes
    double edges = 0.0;              ///< level changes in a second
    double biphase = 0.0;            ///< share of them that half a bit or a bit of LTC follows
    std::array<int, 24> distances{}; ///< how many edges follow the one before after 0, 25, 50... microseconds
    std::vector<float> wave;         ///< some milliseconds from the middle, at most 72 values
};

/// Looks at the first seconds of each channel of \a source.
std::vector<Diagnosis> diagnose(SampleSource &source);

/// Why no timecode was found, in plain words: \a doubt says it, or what \a diagnosis shows.
std::string reasonFor(Doubt doubt, const Diagnosis &diagnosis);

/// \a diagnosis of the channel with the number \a channel (from 0) in lines: level, reason unless \a doubt is
/// None, a picture of the waveform and the lengths between edges.
std::string toText(const Diagnosis &diagnosis, int channel, Doubt doubt);

} // namespace ltcreader
