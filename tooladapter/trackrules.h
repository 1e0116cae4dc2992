// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/exportplan.h"
#include "tooladapter/source.h"

#include <string>

namespace tooladapter
{

/// Takes every audio stream where the list names none. Throws Refusal where none would be left of a sound
/// file.
void takeAllStreams(ExportPlan &plan, const Source &source);

/// Gives each track of \a plan a codec that its kind of file can hold, and that loses no more than was asked
/// for.
void chooseCodecs(ExportPlan &plan, const Source &source);

/// The filter that keeps the channels of \a track, in order.
std::string channelFilter(const AudioTrack &track);

} // namespace tooladapter
