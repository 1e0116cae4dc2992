// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame.h"

#include <optional>
#include <vector>

namespace ltcreader
{

/// [bits] Edges that are nearer to their places than this cannot be mistaken.
constexpr double clearDeviation = 0.06;

/// Frames of one recording that count up as time goes by.
struct FrameChain {
    FrameRate rate;
    double startCount = 0.0;  ///< [frames] since midnight at the first sample of the recording, any sign
    double frameLength = 0.0; ///< [samples] as recorded
    double deviation = 0.0;   ///< [bits] root mean square deviation of the edges
    int frames = 0;           ///< that belong to the chain
    int unbroken = 0;         ///< most of them in a row without a gap
    int strangers = 0;        ///< frames within its span that do not
    int wraps = 0;            ///< times that the frame number returned to its lowest label within the chain
    double first = 0.0;       ///< [samples] where its first frame starts
    double last = 0.0;        ///< [samples] where its last frame ends
    FrameBits bits = 0;       ///< of its first frame
    bool inverted = false;    ///< its frames begin with a falling edge
};

/// \a rate with ntsc as the measured frame length [samples] tells. Where the speed fits neither of both, \a
/// wanted decides.
FrameRate rateBySpeed(FrameRate rate, double frameLength, int sampleRate,
                      const std::optional<FrameRate> &wanted);

/// The chain that the recording starts with: the earliest of \a frames (in order of time) that is long enough
/// to be believed. \a wanted restricts the rate (its dropFrame is not looked at). \a sampleRate [Hz].
std::optional<FrameChain> findChain(const std::vector<Frame> &frames, int sampleRate,
                                    const std::optional<FrameRate> &wanted);

} // namespace ltcreader
