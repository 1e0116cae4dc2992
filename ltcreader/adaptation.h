// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/syncsearch.h"

#include <vector>

namespace ltcreader
{

/// \a grid after the filter that brings its half bits nearest to \a levels (one for each of them, 1 or -1, 0
/// where not known), which a first look at it decided for. What is missing stays 0.
FrameGrid adapted(const FrameGrid &grid, const std::vector<float> &levels);

} // namespace ltcreader
