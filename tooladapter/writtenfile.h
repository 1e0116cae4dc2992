// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/exportrules.h"
#include "tooladapter/source.h"

namespace tooladapter
{

/// Throws Refusal when \a written, the file that \a job has left, lacks something of what was to come from \a
/// source: the picture or a part of its length, an audio stream, a channel, or the start timecode.
void checkWrittenFile(const Export &job, const Source &source, const Source &written);

} // namespace tooladapter
