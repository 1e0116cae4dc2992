// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/framechain.h"
#include "ltcreader/frame/doubt.h"
#include "ltcreader/sync/clocksearch.h"
#include "ltcreader/sync/syncsearch.h"
#include "timecode/timecode.h"

#include <cstdint>
#include <vector>

namespace ltcreader
{

/// A line of labels: one for each frame of a grid, counting up.
struct LabelLine {
    timecode::Rate rate;
    std::int64_t count = 0; ///< [frames] since midnight of frame 0 of the grid
};

/// What the frames of \a grid, each looked at by itself, say against \a line: that another line runs through
/// all of the recording or a part of it, or that labels do not count up there. \a levels are those of all
/// half bits as they were decided, empty where only digits and sync words were. The line must be proven early
/// where \a samples, \a frameLength [samples] each frame, are loud enough to hide another.
Doubt doubtAboutLine(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                     const std::vector<float> &samples, double frameLength);

/// Whether timecode lies before that of \a grid whose frames begin at other places. \a clock is that by which
/// \a grid was cut out of \a sound.
bool isPrecededByAnother(const FrameGrid &grid, const Conditioned &sound, const Clock &clock);

/// Whether the timecode of \a grid shows only behind the beginning of \a samples, where louder sound may hide
/// another. \a frameLength [samples].
bool isMaskedBefore(const FrameGrid &grid, const std::vector<float> &samples, double frameLength);

/// What all this says against \a chain in \a samples at \a sampleRate [Hz].
Doubt doubtAboutChain(const FrameChain &chain, const std::vector<float> &samples, int sampleRate);

} // namespace ltcreader
