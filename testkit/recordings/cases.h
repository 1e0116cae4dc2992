// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/filters.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/random.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace testrecordings
{

using testsignals::LtcRate;
using testsignals::LtcSignal;
using testsignals::LtcTime;
using testsignals::Random;
using Samples = testsignals::Samples;

/// What a reader says of a recording.
struct Answer {
    LtcTime start;                         ///< of the first sample
    LtcRate rate;                          ///< class of the frame rate and counting
    int channel = 0;                       ///< counted from 0
    std::int64_t samplesSinceMidnight = 0; ///< of the first sample
};

/// What is true of a recording that holds timecode.
struct Truth {
    LtcSignal signal;
    int channel = 0;
    bool speedKnown = true; ///< false: the machine's speed was changed, so that NTSC and its base rate cannot
                            ///< be distinguished
};

/// One recording for the readers.
struct Case {
    std::vector<Samples> channels; ///< of equal length, +-1 is full scale
    int sampleRate = 48000;
    std::optional<Truth> truth; ///< none: there is no timecode in it
};

enum class Verdict {
    Right,   ///< label, drop-frame flag and rate class are all right
    Wrong,   ///< one of them is not, or there was no timecode
    Refused, ///< no answer, which is right when there is no timecode
    Broken,  ///< what the reader would print is no report, whatever it says
};
std::string nameOf(Verdict verdict);

/// Whether the label of the first sample, the drop-frame flag and the rate class are those of \a truth.
bool isRight(const Truth &truth, const Answer &answer);

Verdict judge(const Case &recording, const std::optional<Answer> &answer);

/// What \a recording holds and what a reader answered, in words.
std::string textOfTruth(const Case &recording);
std::string textOf(const std::optional<Answer> &answer);

/// Whether the answer's rate class (23.976, 24, 25, 29.97, 30) is the timecode's; where the speed was
/// changed, whether its base is.
bool isRateRight(const Truth &truth, const Answer &answer);

/// [samples] between the answer's position and the true one, across midnight the shorter way.
double positionError(const Truth &truth, const Answer &answer);

/// 23.976, 24, 25, 29.97, 29.97 drop-frame and 30 frames per second.
const std::vector<LtcRate> &allRates();
std::string nameOf(LtcRate rate);
LtcRate anyRate(Random &random);

/// Whether \a label exists at \a rate.
bool isLabel(LtcTime label, LtcRate rate);

/// The number that \a text is. Throws std::invalid_argument where it is anything else, or too large.
std::uint64_t numberFrom(const std::string &text);

/// Three seconds at 48 kHz starting anywhere in the day and anywhere in a frame but near its middle, where
/// the nearest label would hang on a sample; either polarity, any user bits in every second one, -20 to -3
/// dBFS.
LtcSignal anySignal(Random &random, LtcRate rate);

/// The signal by libltc's encoder or by our own, at random.
Samples audioOf(const LtcSignal &signal, Random &random);

constexpr int fineBits = 24; ///< for timecode far below a disturbance, which must not go under in rounding

/// A recording of one channel, scaled down where it would pass full scale and rounded to \a bits per sample.
Case monoCase(const LtcSignal &signal, Samples samples, Random &random, int bits = 16);

} // namespace testrecordings
