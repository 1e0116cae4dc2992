// SPDX-License-Identifier: MIT
#include "tooladapter/rules/framerate.h"

#include "timecode/timecode.h"

#include <charconv>
#include <cmath>

namespace tooladapter
{
namespace
{

constexpr double fastest = 1000.0; // [frames/s] a rate beyond is damage, or the clock of the time stamps

bool readNumber(std::string_view text, long &number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

} // namespace

FrameRate FrameRate::fromText(std::string_view text)
{
    const std::size_t slash = text.find('/');
    FrameRate rate;
    if (!readNumber(text.substr(0, slash), rate.numerator))
        return {};
    if (slash != std::string_view::npos && !readNumber(text.substr(slash + 1), rate.denominator))
        return {};
    return rate.isValid() && rate.perSecond() <= fastest ? rate : FrameRate{};
}

int FrameRate::nominal() const
{
    return static_cast<int>(std::lround(perSecond()));
}

std::string FrameRate::toText() const
{
    return std::to_string(numerator) + '/' + std::to_string(denominator);
}

bool FrameRate::isNtsc() const
{
    const double whole = nominal();
    return std::abs(perSecond() - timecode::ntscSpeed(whole)) < std::abs(perSecond() - whole);
}

} // namespace tooladapter
