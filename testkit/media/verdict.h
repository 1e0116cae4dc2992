// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/media/exportedfile.h"
#include "testkit/media/recording.h"

/// Whether the export of one recording is as it has to be.
struct Verdict {
    bool right = false;
    QString text; ///< for people
};

/// Judges \a exported, what was read back, by what was put into \a recording. \a exported is empty if no
/// file was written.
///
/// Pictures carry the timecode to the frame; sound files carry it to the sample, and so does a sound file
/// that takes it over from its sibling. A recording without timecode comes out without one. What is broken or
/// holds nothing but timecode is not written.
Verdict judge(const mediakit::Recording &recording, const std::optional<ExportedFile> &exported);
