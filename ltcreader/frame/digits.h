// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/frame.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace ltcreader
{

/// The digits of a second, of a minute and of an hour, and the drop-frame flag, in order of their bits.
enum Digit : std::size_t { DropFlag, SecondUnits, SecondTens, MinuteUnits, MinuteTens, HourUnits, HourTens };
constexpr std::size_t digitCount = 7;
constexpr std::array<BitField, digitCount> digitFields{
    field::dropFrame,  field::secondUnits, field::secondTens, field::minuteUnits,
    field::minuteTens, field::hourUnits,   field::hourTens};

/// A value for each digit; -1 where it is left open.
using Digits = std::array<int, digitCount>;

/// For each digit a set bit for each value that it may have.
using Allowed = std::array<std::uint32_t, digitCount>;
constexpr std::uint32_t anyBit = 0b11;
constexpr Allowed anyTime{anyBit, 0x3FF, 0x3F, 0x3FF, 0x3F, 0x3FF, 0x7};

/// Hours stop at 23, so which units there are depends on the tens: both ways that there are.
struct HoursAllowed {
    std::uint32_t tens;
    std::uint32_t units;
};
constexpr std::array<HoursAllowed, 2> hoursAllowed{HoursAllowed{0b011, 0x3FF}, {0b100, 0xF}};

} // namespace ltcreader
