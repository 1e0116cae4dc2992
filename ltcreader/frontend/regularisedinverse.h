// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frontend/prewhitener.h"

#include <vector>

namespace ltcreader
{

/// Undoes what the weights of \a sound do to neighbouring half bits of \a halfBit [s], and scales to a mean
/// square of 1 again.
std::vector<float> equaliseByInverse(const std::vector<float> &halfBits, const FilteredSound &sound,
                                     double halfBit);

} // namespace ltcreader
