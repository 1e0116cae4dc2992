// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/source.h"

#include <string>

namespace tooladapter
{

/// Takes every audio stream where the list names none, also where it names the picture alone and \a hints
/// name no timecode channel that it leaves out: it was made without knowing the sound. Throws Refusal
/// where none would be left of a sound file.
void takeAllStreams(ExportPlan &plan, const Source &source, const Hints &hints);

/// Gives each track of \a plan a codec that its kind of file can hold, and that loses no more than was asked
/// for by \a sound and by the list.
void chooseCodecs(ExportPlan &plan, const Source &source, SoundType sound);

/// More silence than this is put neither before nor behind a sound [s]: the source is damaged then, or no
/// recording of one take.
constexpr double longestSilence = 10.0;

/// The filter that puts \a delay [s], up to longestSilence, of silence before a stream; empty where it is too
/// short to matter.
std::string delayFilter(double delay);

/// The filter that puts at least \a missing [s] of silence behind a stream; empty where it is too short to
/// matter, and beyond longestSilence.
std::string endingFilter(double missing);

/// The filter that keeps the channels of \a track, in order.
std::string channelFilter(const AudioTrack &track);

} // namespace tooladapter
