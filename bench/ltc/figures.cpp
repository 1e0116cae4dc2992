// SPDX-License-Identifier: MIT
#include "bench/ltc/figures.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

namespace ltcbench
{

std::string format(const char *pattern, ...)
{
    std::array<char, 512> buffer{};
    std::va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(buffer.data(), buffer.size(), pattern, arguments);
    va_end(arguments);
    return buffer.data();
}

const char *titleOf(Reader reader)
{
    switch (reader) {
    case Reader::Libltc:
        return "libltc";
    case Reader::FilteredLibltc:
        return "libltc, filtered";
    case Reader::Ours:
        break;
    }
    return "LTCReader";
}

double percent(int part, int whole)
{
    return whole == 0 ? 0.0 : 100.0 * part / whole;
}

const Tally &tallyOf(const Tallies &tallies, Reader reader)
{
    static const Tally nothing;
    const auto found = tallies.find(reader);
    return found == tallies.end() ? nothing : found->second;
}

double medianOf(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double largestOf(const std::vector<double> &values)
{
    return values.empty() ? 0.0 : *std::max_element(values.begin(), values.end());
}

} // namespace ltcbench
