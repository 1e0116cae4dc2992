// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sync/framesync.h"
#include "timecode/timecode.h"

#include <functional>

/// User bits of frame \a frame, in the places that they have in a frame.
using UserBits = std::function<ltcreader::FrameBits(int frame)>;

/// The half bits of \a frames frames of timecode from \a start on, 1 or -1, as a perfect recording gives
/// them. The phase correction bit stays 0.
ltcreader::FrameGrid gridOfTimecode(const timecode::Label &start, const timecode::Rate &rate, int frames,
                                    const UserBits &userBits);

/// Adds noise of \a deviation to each half bit and brings the mean square back to 1; the same noise in every
/// run.
void addNoise(ltcreader::FrameGrid &grid, double deviation);
