// SPDX-License-Identifier: MIT
#pragma once

#include "timecode/timecode.h"
#include "tooladapter/rules/framerate.h"

#include <string>

namespace tooladapter
{

/// A start timecode as the reader writes it: "HH:MM:SS:FF", or "HH:MM:SS;FF" for drop-frame.
struct StartTimecode {
    timecode::Label label;
    bool dropFrame = false;

    /// Throws Refusal when \a text is no time of day in one of the two forms.
    static StartTimecode fromText(const std::string &text);

    std::string toText() const;
};

/// How many frames a second the audio timecode counts where its reader named no rate: NTSC timecode, which
/// counts 24 or 30. Drop-frame and frame numbers from 24 on mean 30; otherwise it is taken to count as \a
/// picture does, or half as fast. Throws Refusal when neither can be.
int impliedNominalRate(const StartTimecode &timecode, const FrameRate &picture);

/// The text of \a timecode, counted by its reader at \a nominalRate frames a second, for a picture that runs
/// at \a picture: 10:11:12:13 at 25 is 10:11:12:26 at 50. Throws Refusal when the timecode cannot be one of
/// its own rate, or is drop-frame and the picture does not run at 29.97 or 59.94.
std::string timecodeAtRate(const StartTimecode &timecode, int nominalRate, const FrameRate &picture);

} // namespace tooladapter
