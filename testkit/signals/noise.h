// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/filters.h"
#include "testkit/signals/random.h"

namespace testsignals
{

/// Every sound in here is scaled to a mean power of 1.

Samples whiteNoise(Random &random, std::size_t count);

/// Power falls by 3 dB an octave from 10 Hz to beyond 20 kHz.
Samples pinkNoise(Random &random, std::size_t count, int sampleRate);

/// Rumble in gusts: power falls by 12 dB an octave above 60 Hz.
Samples windNoise(Random &random, std::size_t count, int sampleRate);

/// Mains of 50 or 60 Hz with forty harmonics that fall by 9 to 15 dB an octave, their phases random.
Samples hum(Random &random, std::size_t count, int sampleRate);

/// A talker: voiced syllables with moving formants, hissing sounds and pauses.
Samples speechLike(Random &random, std::size_t count, int sampleRate);

/// A band: chords, a bass line and drums on a beat.
Samples musicLike(Random &random, std::size_t count, int sampleRate);

} // namespace testsignals
