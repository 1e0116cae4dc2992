// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/filters.h"
#include "testkit/signals/random.h"

namespace testsignals
{

double power(const Samples &samples); ///< mean square
double largestMagnitude(const Samples &samples);
void scaleToPower(Samples &samples, double power); ///< silence stays silence
void scaleToPeak(Samples &samples, double level);  ///< \a level in dBFS

/// Adds \a other so that the power of \a samples is \a ratio dB above that of \a other, both taken over their
/// whole length and the whole band. The signal keeps its level.
void addAtRatio(Samples &samples, const Samples &other, double ratio);

/// As addAtRatio(), then scaled down where it would pass full scale.
void mixAtRatio(Samples &samples, const Samples &other, double ratio);

/// Rounds to \a bits per sample, full scale clipped, with triangular dither where \a dithered.
void quantise(Samples &samples, Random &random, int bits, bool dithered = true);

/// Amplifies by \a gain dB and cuts off at full scale.
void overdrive(Samples &samples, double gain);

/// Automatic gain of a camera: starts \a depth dB too loud, cut off at full scale, and settles with the
/// attack time; it creeps up again with the release time in every pause. Times in seconds.
void automaticGain(Samples &samples, int sampleRate, double depth, double attack, double release);

/// The line rings at \a frequency Hz after each level change.
void ring(Samples &samples, int sampleRate, double frequency, double quality, double gain);

void addOffset(Samples &samples, double offset); ///< constant voltage, cut off at full scale
void invert(Samples &samples);

/// Positive half-waves come out \a gain dB louder than negative ones.
void makeAsymmetrical(Samples &samples, double gain);

/// Silences \a share of the time in gaps of 5 to 100 ms at random places.
void dropOut(Samples &samples, Random &random, int sampleRate, double share);

/// Silences everything before \a begin and from \a end on. [s]
void keepOnly(Samples &samples, int sampleRate, double begin, double end);

/// Continues with \a other from \a time on. [s]
void continueWith(Samples &samples, const Samples &other, int sampleRate, double time);

/// A voice channel of 300 to 3400 Hz.
void radioChannel(Samples &samples, int sampleRate);

} // namespace testsignals
