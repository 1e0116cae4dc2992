// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/framerate.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tooladapter
{

/// What an export list changes of the facts that the chunks of a WAV file record.
struct WaveChanges {
    bool setsStart = false;        ///< the list names a start; otherwise the source's own is kept
    std::string speed;             ///< of the timecode, such as "029.970-DF"; empty = not named
    FrameRate rate;                ///< of the timecode; invalid = not known
    std::vector<int> keptChannels; ///< of the source, counted from 0; empty = all

    /// The frames are counted with drop-frame; only valid with a speed.
    bool isDropFrame() const { return speed.ends_with("-DF"); }
};

/// The changes that \a plan makes. \a timecodeRate is the frame rate of the audio timecode as the application
/// knows it; if it is invalid, the speed that the list names is rounded to the nearest rate of LTC.
WaveChanges waveChangesOf(const ExportPlan &plan, const FrameRate &timecodeRate);

/// What the written file says of itself.
struct WrittenSound {
    std::uint64_t start = 0;      ///< [samples since midnight]
    std::uint64_t sampleRate = 0; ///< [samples/s]
    std::optional<int> bits;      ///< [bits per sample] if the source has another depth
    int sourceChannels = 0;       ///< number of channels in the source
};

} // namespace tooladapter
