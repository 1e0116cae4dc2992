// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/exportrules.h"
#include "tooladapter/source.h"

#include <string>

namespace tooladapter
{

/// What \a written, the file that \a job has left, lacks of what was to come from \a source: the picture or a
/// part of its length, an audio stream, a channel, or the start timecode. Empty where it is complete.
std::string faultIn(const Source &written, const Export &job, const Source &source);

} // namespace tooladapter
