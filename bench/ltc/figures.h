// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/measurement.h"

#include <charconv>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace ltcbench
{

/// Text by a pattern of printf, up to 511 bytes.
[[gnu::format(printf, 1, 2)]] std::string format(const char *pattern, ...);

/// The number that \a text is. Throws std::invalid_argument where it is anything else, or too large.
template <typename Number>
Number numberFrom(const std::string &text)
{
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end)
        throw std::invalid_argument("\"" + text + "\" is no number");
    return number;
}

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
