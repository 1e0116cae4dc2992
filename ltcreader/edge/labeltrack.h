// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/frame.h"
#include "ltcreader/frame/doubt.h"
#include "ltcreader/frame/foundline.h"
#include "timecode/timecode.h"

#include <optional>
#include <vector>

namespace ltcreader
{

/// [bits] Edges that are nearer to their places than this cannot be mistaken.
constexpr double cleanJitter = 0.06;

/// Frames of one recording that count up with time.
struct LabelTrack : FoundLine {
    double rmsJitter = 0.0; ///< [bits] of the edges
    int longestRun = 0;     ///< most of its frames in a row without a gap
    int outliers = 0;       ///< frames within its span that are not part of it
    int wraps = 0;          ///< times that the frame number returned to its lowest label within the track
    double first = 0.0;     ///< [samples] where its first frame starts
    double last = 0.0;      ///< [samples] where its last frame ends
};

/// The track that the recording starts with: the earliest of \a frames (in order of time) that is long enough
/// to be believed. \a wanted restricts the rate (its dropFrame is not looked at). \a sampleRate [Hz].
std::optional<LabelTrack> findTrack(const std::vector<Frame> &frames, int sampleRate,
                                    const std::optional<timecode::Rate> &wanted);

/// How the labels of those of \a frames move whose edges cannot be mistaken: None when they count up, or
/// where there are fewer than six of them.
Doubt doubtAboutLabels(const std::vector<Frame> &frames);

/// Whether one of \a frames carries a label that the drop-frame flag of \a track leaves out.
bool carriesFalseFlag(const LabelTrack &track, const std::vector<Frame> &frames);

/// Whether some of \a frames whose edges cannot be mistaken are not on the line of \a track: more than one
/// before it, or within it, where a short track tolerates none.
bool isContradicted(const LabelTrack &track, const std::vector<Frame> &frames);

/// Whether other timecode follows on \a track: the first of \a frames behind it whose edges cannot be
/// mistaken carries a label that is more than a second away from its line.
bool endsAtJump(const LabelTrack &track, const std::vector<Frame> &frames);

} // namespace ltcreader
