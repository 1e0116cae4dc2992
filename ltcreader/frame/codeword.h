// SPDX-License-Identifier: MIT
#pragma once

#include "timecode/timecode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace ltcreader
{

constexpr int bitsPerFrame = 80;
constexpr int syncBits = 16;                      // at the end of a frame
constexpr int dataBits = bitsPerFrame - syncBits; // before them
constexpr std::uint16_t syncWord = 0xBFFC;        // 0011111111111101, the first bit sent is the lowest

/// A row of neighbouring bits of a frame that hold one number, lowest bit first.
struct BitField {
    int first = 0;
    int width = 0;

    /// The bit after the last one.
    constexpr int end() const { return first + width; }
};

namespace field
{
constexpr BitField frameUnits{0, 4};
constexpr BitField frameTens{8, 2};
constexpr BitField secondUnits{16, 4};
constexpr BitField secondTens{24, 3};
constexpr BitField minuteUnits{32, 4};
constexpr BitField minuteTens{40, 3};
constexpr BitField hourUnits{48, 4};
constexpr BitField hourTens{56, 2};
constexpr BitField dropFrame{10, 1};
} // namespace field

/// First bits of the eight groups of four user bits.
constexpr std::array<int, 8> userBitGroups{4, 12, 20, 28, 36, 44, 52, 60};
constexpr int userBitGroupWidth = 4;

/// Whether \a bit is one of these.
bool isUserBit(int bit);

/// The 64 bits of a frame before its sync word; the first bit sent is the lowest.
using FrameBits = std::uint64_t;

/// The number that \a bits holds in \a part.
int fieldValue(FrameBits bits, BitField part);

/// The label in \a bits; nothing when its digits cannot be a time of day.
std::optional<timecode::Label> labelOf(FrameBits bits);

/// The eight groups of user bits of \a bits, the first group in the lowest bits.
std::uint32_t userBitsOf(FrameBits bits);

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
