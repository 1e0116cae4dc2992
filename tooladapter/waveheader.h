// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/binaryfile.h"
#include "tooladapter/source.h"

namespace tooladapter
{

/// What the WAV or RF64 file \a file says of itself: channels and length of its sound. Throws BrokenFile
/// where the file is not whole. (Layout: EBU Tech 3285 and 3306.)
Source readWave(BinaryFile &file);

} // namespace tooladapter
