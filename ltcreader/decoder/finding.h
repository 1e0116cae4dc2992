// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decoder/jointreader.h"
#include "ltcreader/decoder/reading.h"
#include "ltcreader/edge/labeltrack.h"
#include "ltcreader/sound/window.h"

namespace ltcreader
{

/// A timecode that was found in one channel of a window.
struct Finding : FoundLine {
    int channel = 0;         ///< from 0
    double level = 0.0;      ///< [full scale] RMS of the timecode
    double confidence = 0.0; ///< 0 to 1
    Algorithm algorithm = Algorithm::Automatic;
};

/// True when less than two whole frames lie before \a track.
bool beginsWithRecording(const LabelTrack &track);

/// True when \a track leaves no doubt and begins with the recording, so that nothing else needs to be looked
/// at.
bool isSure(const LabelTrack &track);

/// True when \a track is right in its own span, though the recording holds more that is not part of it.
bool isClear(const LabelTrack &track);

/// True when \a track may be reported where nothing better is found.
bool isBelievable(const LabelTrack &track);

Finding toFinding(const LabelTrack &track, Algorithm algorithm, int channel, const Window &window);
Finding toFinding(const JointReading &reading, int channel);

/// Whether all numbers of \a finding are finite and can be those of timecode.
bool isWhole(const Finding &finding);

/// Whether two findings in one window cannot both be true.
bool contradict(const Finding &a, const Finding &b);

/// \a finding in a window that begins \a offset [samples] after the recording's first one.
Reading toReading(const Finding &finding, double offset, int sampleRate);

} // namespace ltcreader
