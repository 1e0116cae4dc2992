// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace testsignals
{

using Samples = std::vector<float>; ///< one channel, +-1 is full scale

/// Filters over a whole recording, starting from rest. Frequencies in Hz, below half of \a sampleRate (a
/// frequency at or above it leaves a low-pass out). \a order of the Butterworth filters: even.
void lowPass(Samples &samples, int sampleRate, double frequency, int order = 4);
void highPass(Samples &samples, int sampleRate, double frequency, int order = 2);

/// Peak of \a gain dB and the given \a quality around \a frequency, nothing elsewhere.
void peak(Samples &samples, int sampleRate, double frequency, double quality, double gain);

/// Passes a band around \a frequency with gain 1 in its middle.
void resonance(Samples &samples, int sampleRate, double frequency, double quality);

/// A capacitor in the line into a resistor: what is left of level changes are spikes. \a timeConstant in
/// seconds.
void differentiate(Samples &samples, int sampleRate, double timeConstant);

} // namespace testsignals
