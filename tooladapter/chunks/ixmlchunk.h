// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/chunks/wavefacts.h"

#include <optional>
#include <string>

namespace tooladapter
{

/// The content \a source of an "iXML" chunk for a file with \a changes that is \a written. Changed are, in
/// place: the start and the speed of the timecode, the list of tracks if a channel is left out, and the depth
/// of the samples if it is another one. Everything else is kept byte for byte. Nothing if \a source is no
/// iXML.
std::optional<std::string> changedIxml(const std::string &source, const WaveChanges &changes,
                                       const WrittenSound &written);

} // namespace tooladapter
