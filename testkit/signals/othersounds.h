// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/filters.h"
#include "testkit/signals/random.h"

#include <string>
#include <vector>

namespace testsignals
{

/// A kind of recording that holds no timecode.
struct OtherSound {
    std::string name;
    Samples (*make)(Random &random, std::size_t count,
                    int sampleRate); ///< below full scale, at a level of its own
};

/// Everything that a decoder must not take for timecode: silence, noises, speech, music, tones and square
/// waves near the rates of timecode, biphase data without sync word or without valid digits, modems, dialling
/// tones, clicks.
const std::vector<OtherSound> &otherSounds();

} // namespace testsignals
