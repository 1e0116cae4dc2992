// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/argumentlist.h"
#include "tooladapter/rules/source.h"

namespace tooladapter
{

/// Whether \a picture stays interlaced in the codec that \a codec names.
bool keepsFields(const Options &codec, const Stream &picture);

/// What a coded \a picture needs so that it stays what it was, in addition to the codec that \a codec names:
/// nothing is stretched, fields stay fields or become frames, and colours stay the same.
///
/// A picture that is given a size is fitted into it, upright and with square pixels, between bars. Interlaced
/// pictures of 1080 lines stay interlaced where the codec can hold that; all others become one frame for each
/// two fields. Colours that are coded otherwise than as in HD are converted, wide ones keep their coding.
Options pictureTreatment(const Options &codec, const Stream &picture);

} // namespace tooladapter
