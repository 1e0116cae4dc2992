// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/measurement.h"

#include <string>
#include <vector>

namespace ltcbench
{

/// Text by a pattern of printf, up to 511 bytes.
#if defined(__GNUC__)
[[gnu::format(printf, 1, 2)]]
#endif
std::string
format(const char *pattern, ...);

/// Name of \a reader for people and in files.
const char *titleOf(Reader reader);

/// \a part of \a whole in per cent; 0 of nothing.
double percent(int part, int whole);

/// The tally of \a reader, an empty one where it did not read.
const Tally &tallyOf(const Tallies &tallies, Reader reader);

/// 0 where there are no \a values.
double medianOf(std::vector<double> values);
double largestOf(const std::vector<double> &values);

} // namespace ltcbench
