// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportrules.h"
#include "tooladapter/rules/source.h"

#include <string>
#include <vector>

namespace tooladapter
{

/// The arguments that make the probe tool report on the file that \a job has left of \a source: what it says
/// of itself, and what is really there at its end.
std::vector<std::string> checkArguments(const Export &job, const Source &source);

/// What \a written, reported for checkArguments(), lacks of what was to come from \a source: the picture or a
/// part of its length, an audio stream, a channel, or the start timecode. Empty where it is complete. A file
/// whose header promises more than is there is not complete.
std::string faultIn(const Source &written, const Export &job, const Source &source);

} // namespace tooladapter
