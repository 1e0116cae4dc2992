// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/conditioner.h"
#include "ltcreader/halfbits.h"

namespace ltcreader
{

/// Undoes what the weights of \a sound do to neighbouring half bits of \a halfBit [s], and scales to a mean
/// square of 1 again.
HalfBits equalise(const HalfBits &halfBits, const Conditioned &sound, double halfBit);

} // namespace ltcreader
