// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/binaryfile.h"
#include "tooladapter/source.h"

namespace tooladapter
{

/// What the QuickTime file \a file says of itself: kind, channels, end and start timecode of its tracks. The
/// duration of a stream is the time from the beginning of the file to the stream's end; codecs and rates are
/// not read. Throws BrokenFile where the file is not whole. (Layout: Apple's description of the QuickTime
/// file format, "Movie Atoms" and "Media Data Atom Types".)
Source readQuickTime(BinaryFile &file);

} // namespace tooladapter
