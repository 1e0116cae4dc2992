// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/measurement.h"

#include <string>
#include <vector>

namespace ltcbench
{

/// All figures as comma-separated values with a head line, one line for each grade and reader.
std::string csvOf(const std::vector<CurveResult> &curves, const std::vector<SoundResult> &sounds);

/// What was measured in one run, or in several together.
struct Results {
    std::vector<CurveResult> curves;
    std::vector<SoundResult> sounds;
};

/// Adds the figures in \a csv, text as csvOf() writes it, to \a results. Throws std::invalid_argument where a
/// line names no curve, grade, sound or reader, or holds anything but figures.
void addCsv(const std::string &csv, Results &results);

} // namespace ltcbench
