// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/doubt.h"
#include "ltcreader/frame/foundline.h"
#include "timecode/timecode.h"

#include <array>
#include <optional>

namespace ltcreader
{

/// How labels may count.
constexpr std::array<timecode::Rate, 4> waysOfCounting{
    timecode::Rate{24, false, false}, {25, false, false}, {30, false, false}, {30, true, true}};

/// A larger speed error, as speedError() gives it, says nothing about 1000 / 1001.
constexpr double speedMatters = 0.003;

/// How far a speed of one frame in \a frameLength [samples] is from \a rate, as the logarithm of the
/// quotient.
double speedError(double frameLength, const timecode::Rate &rate, int sampleRate);

/// Sets ntsc of the rate of \a line, and its classDoubt, as the measured speed shows; where that fits neither
/// of both, \a wanted decides. False when the rate is not \a wanted (its dropFrame is not looked at).
bool setRateClass(FoundLine &line, int sampleRate, const std::optional<timecode::Rate> &wanted);

/// What the speed says against the rate of \a line, as setRateClass() gave it. No machine runs more than 13 %
/// too fast or too slow. Film at 24 runs at 25, but labels that jump once look like it: so where no rate is
/// \a wanted, the frame number must be read to return twice, \a seconds touched be three. 1000/1001 is proven
/// only where the midpoint to the whole rate is 4.3 standard deviations away; far from both rates, and where
/// one is \a wanted, it need not be.
Doubt doubtAboutSpeed(const FoundLine &line, int seconds, int sampleRate,
                      const std::optional<timecode::Rate> &wanted);

} // namespace ltcreader
