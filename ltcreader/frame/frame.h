// SPDX-License-Identifier: MIT
#pragma once

#include "timecode/timecode.h"

#include <array>
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

/// The 64 bits of a frame before its sync word; the first bit sent is the lowest.
using FrameBits = std::uint64_t;

/// The number that \a bits holds in \a part.
int fieldValue(FrameBits bits, BitField part);

/// The label in \a bits; nothing when its digits cannot be a time of day.
std::optional<timecode::Label> labelOf(FrameBits bits);

/// The eight groups of user bits of \a bits, the first group in the lowest bits.
std::uint32_t userBitsOf(FrameBits bits);

/// One LTC frame as it was found in the recording.
struct Frame {
    FrameBits bits = 0;
    double start = 0.0;         ///< [samples] since the start of the recording
    double end = 0.0;           ///< [samples] start of the frame that follows
    double meanDeviation = 0.0; ///< [bits] root mean square distance of its edges from where they belong
    double mostDeviation = 0.0; ///< [bits] of a single bit: one edge that is off can change a digit
    bool startsRising = false;  ///< polarity of its first edge
};

} // namespace ltcreader
