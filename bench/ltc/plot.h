// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/measurement.h"

#include <string>
#include <vector>

namespace ltcbench
{

/// An SVG picture with a small plot for each graded curve of \a section: share of files read right over the
/// grade, the harmless end at the left.
std::string plotOf(const std::vector<CurveResult> &curves, const std::string &section);

} // namespace ltcbench
