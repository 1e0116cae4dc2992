// SPDX-License-Identifier: MIT
#pragma once

#include <utility>
#include <vector>

namespace ltcreader
{

/// How the frames of a recording are numbered within their seconds.
struct FrameNumbering {
    int base = 25;            ///< frame numbers of a second
    int first = 0;            ///< number of frame 0
    int droppedAt = -1;       ///< second, counted from that of frame 0, whose numbers begin with 2; -1 = none
    bool illegalTens = false; ///< the tens are 3 in all frames, which no clock shows

    friend bool operator==(const FrameNumbering &, const FrameNumbering &) = default;
};

/// Second, counted from that of frame 0, and number within it of frame \a frame (0 or more).
std::pair<int, int> placeOf(const FrameNumbering &numbering, int frame);

/// How many seconds \a frames frames (1 or more) touch.
int secondsTouched(const FrameNumbering &numbering, int frames);

/// All numberings that \a frames frames (1 or more) can have.
std::vector<FrameNumbering> possibleNumberings(int frames);

} // namespace ltcreader
