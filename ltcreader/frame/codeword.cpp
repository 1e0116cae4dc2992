// SPDX-License-Identifier: MIT
#include "ltcreader/frame/codeword.h"

#include <algorithm>
#include <cstddef>

namespace ltcreader
{
namespace
{

std::optional<int> number(FrameBits bits, BitField tens, BitField units, int limit)
{
    const int low = fieldValue(bits, units);
    const int value = 10 * fieldValue(bits, tens) + low;
    return low < 10 && value < limit ? std::optional(value) : std::nullopt;
}

} // namespace

bool isUserBit(int bit)
{
    return std::any_of(userBitGroups.begin(), userBitGroups.end(),
                       [bit](int first) { return bit >= first && bit < first + userBitGroupWidth; });
}

int fieldValue(FrameBits bits, BitField part)
{
    return static_cast<int>(bits >> part.first & ((FrameBits{1} << part.width) - 1));
}

std::optional<timecode::Label> labelOf(FrameBits bits)
{
    constexpr int framesLimit = 30;
    const auto frames = number(bits, field::frameTens, field::frameUnits, framesLimit);
    const auto seconds = number(bits, field::secondTens, field::secondUnits, 60);
    const auto minutes = number(bits, field::minuteTens, field::minuteUnits, 60);
    const auto hours = number(bits, field::hourTens, field::hourUnits, 24);
    if (!frames || !seconds || !minutes || !hours)
        return std::nullopt;
    return timecode::Label{*hours, *minutes, *seconds, *frames};
}

std::uint32_t userBitsOf(FrameBits bits)
{
    std::uint32_t groups = 0;
    for (std::size_t i = 0; i < userBitGroups.size(); ++i) {
        groups |= static_cast<std::uint32_t>(fieldValue(bits, {userBitGroups[i], userBitGroupWidth}))
                  << (userBitGroupWidth * i);
    }
    return groups;
}

} // namespace ltcreader
