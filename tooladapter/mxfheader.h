// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/binaryfile.h"
#include "tooladapter/source.h"

namespace tooladapter
{

/// What the MXF file \a file says of itself: its pictures and sounds with their channels, its length and its
/// start timecode; codecs and rates are not read. Throws BrokenFile where the file is not whole. (Layout:
/// SMPTE ST 377-1.)
Source readMxf(BinaryFile &file);

} // namespace tooladapter
