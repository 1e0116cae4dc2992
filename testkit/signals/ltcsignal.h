// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/ltctime.h"

#include <cstdint>
#include <vector>

namespace testsignals
{

/// What linear timecode to make.
///
/// A frame begins with the level change that opens its bit 0. The frame labelled `start` begins
/// `offset` * samplesPerFrame samples before the first sample, so at sample 0 exactly when the offset is 0.
/// Before it comes its predecessor, cut off where the file starts: the signal fills the file from the first
/// to the last sample. Positions are exact over any length; nothing is rounded to whole samples.
struct LtcSignal {
    LtcTime start{1, 0, 0, 0};
    LtcRate rate;
    int sampleRate = 48000; ///< [samples/s] 8000..192000
    double duration = 3.0;  ///< [s]
    double level = -12.0;   ///< [dBFS] of the flat tops; 0 is full scale
    double offset =
        0.0; ///< [frames] how far into `start` the first sample lies; negative: `start` comes later
    std::uint32_t userBits = 0; ///< 32 bits, lowest four in the first group
    bool inverted = false;      ///< `start` begins with a falling level change instead of a rising one
    double riseTime =
        40e-6; ///< [s] of a level change, from 10 % to 90 %; 0 is as steep as the sample rate allows
};

/// Length of the signal in samples, rounded to the nearest.
std::size_t sampleCount(const LtcSignal &signal);

/// Frames from midnight to the first sample, a real number in [0, frames per day).
double startFrame(const LtcSignal &signal);

/// Label of the frame whose beginning is nearest to the first sample.
LtcTime startTime(const LtcSignal &signal);

/// Samples from midnight to the first sample, rounded to the nearest, below one day of frames.
std::int64_t samplesSinceMidnight(const LtcSignal &signal);

/// The signal as made by libltc's encoder. The library places level changes on whole samples; it is therefore
/// run at a multiple of the sample rate, and its level changes are drawn band-limited. They lie within 0.04
/// samples at 48 kHz of where they belong, half-way up.
std::vector<float> ltcAudio(const LtcSignal &signal);

} // namespace testsignals
