// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/labeltrack.h"
#include "ltcreader/sync/framesync.h"
#include "ltcreader/verification/alternativelines.h"

#include <vector>

namespace ltcreader
{

/// What the frames of \a grid, each looked at by itself, say against \a line: that another line runs through
/// all of the recording or a part of it, or that labels do not count up there. \a levels are those of all
/// half bits as they were decided, empty where only digits and sync words were. The line must be proven early
/// where \a samples, \a frameLength [samples] each frame, are loud enough to hide another.
Doubt doubtAboutLine(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                     const std::vector<float> &samples, double frameLength);

/// What all this says against \a track in \a samples at \a sampleRate [Hz].
Doubt doubtAboutTrack(const LabelTrack &track, const std::vector<float> &samples, int sampleRate);

} // namespace ltcreader
