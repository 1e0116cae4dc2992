// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportrules.h"
#include "tooladapter/rules/source.h"

#include <string>
#include <string_view>
#include <vector>

namespace tooladapter
{

/// What \a written, the file that \a job has left, lacks of what was to come from \a source: the picture or a
/// part of its length, an audio stream, a channel, or the start timecode. Empty where it is complete.
std::string faultIn(const Source &written, const Export &job, const Source &source);

/// The arguments that make the probe tool report on the file that \a job has left of \a source: what it says
/// of itself, and what is really there at its end.
std::vector<std::string> checkArguments(const Export &job, const Source &source);

/// Like faultIn(), out of the \a report for checkArguments(). A file whose header promises more than is there
/// is not complete either.
std::string faultInReport(std::string_view report, const Export &job, const Source &source);

} // namespace tooladapter
