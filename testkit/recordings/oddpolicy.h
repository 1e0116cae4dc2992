// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/recordings/cases.h"

#include "testkit/signals/biphasemark.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace testrecordings
{

/// What one frame of a generator says. The digits may say what no clock says: hours and frames up to 39,
/// minutes and seconds up to 79.
struct SentFrame {
    LtcTime label;
    bool dropFlag = false;
    std::uint32_t userBits = 0;
    int badDigitAt = -1; ///< first bit of a digit that is replaced; -1 = none
    int badDigit = 0;    ///< 10 to 15, in its place
};

/// What a generator says \a index frames after the signal's `start`, at any index.
using FrameAt = std::function<SentFrame(std::int64_t index)>;

/// The 80 bits of \a frame, parity included.
std::bitset<testsignals::bitsPerFrame> bitsOf(const SentFrame &frame, LtcRate rate);

/// Frames that lie whole in a part of a recording, by their index after the signal's `start`.
struct WholeFrames {
    std::int64_t first = 0;
    int count = 0;
};

/// The whole frames from \a begin to \a end [s] in a signal that runs at its nominal speed.
WholeFrames wholeFrames(const LtcSignal &signal, double begin, double end);

/// Neighbouring whole frames whose labels count up by one.
struct Stretch {
    std::optional<Truth> line; ///< extrapolated to the first sample; none where the label does not exist
    int frames = 0;
};

/// All whole frames \a whole of \a signal as stretches in their order.
std::vector<Stretch> stretchesOf(const LtcSignal &signal, const FrameAt &frameAt, WholeFrames whole);

/// Which lines are right where labels jump: that of the first stretch, and where fewer than two whole frames
/// lie before a jump also that of the next one. A line takes two frames to run; one frame alone is a line
/// only where a line follows it, or nothing does.
std::vector<Truth> rightLines(const std::vector<Stretch> &stretches);

/// Which lines are right where none runs: none, but that of a recording so short that all its whole frames
/// count up like ordinary timecode.
std::vector<Truth> onlyLine(const std::vector<Stretch> &stretches);

/// \a fault says what is broken in the printed report, see faultIn(); empty where nothing is.
Verdict judge(const std::vector<Truth> &right, const std::optional<Answer> &answer, const std::string &fault);

/// What is broken in \a report as printed for a recording at \a sampleRate [Hz]: it is no JSON object, lacks
/// a key, holds a number that is not finite, samples outside the day or a measured frame rate more than 15 %
/// off the claimed one. Empty where it is whole.
std::string faultIn(const std::string &report, int sampleRate);

} // namespace testrecordings
