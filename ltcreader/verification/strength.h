// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sync/framesync.h"

namespace ltcreader
{

/// How strong timecode is among the half bits of some frames.
struct Strength {
    double amplitude = 0.0; ///< of half bits of mean square 1, 0 to 1
    double rms = 1.0;       ///< of the half bits as they are
};

/// [whole frames] A shorter line than that is not looked for.
constexpr int leastStretch = 2;

/// The strength in frames \a from to \a to - 1, as their sync words show it: \a steady where all have one
/// polarity.
Strength strengthOf(const FrameGrid &grid, int from, int to, bool steady);

/// Whether all sync words of \a grid seem to have one polarity.
bool isSteady(const FrameGrid &grid);

/// The strength at frame \a frame: that of both sides together, or of the weaker one where timecode begins or
/// ends.
Strength strengthAt(const FrameGrid &grid, int frame, bool steady);

/// How many frames of \a grid pass before its timecode shows.
int framesBefore(const FrameGrid &grid);

/// The first frame of \a grid that its timecode fills, where it begins late; else 0.
int firstWholeFrame(const FrameGrid &grid);

} // namespace ltcreader
