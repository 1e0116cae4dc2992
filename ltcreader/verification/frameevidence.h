// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/codeword.h"
#include "ltcreader/sync/framesync.h"
#include "timecode/timecode.h"

#include <array>
#include <cstddef>
#include <vector>

namespace ltcreader
{

/// The parts of a label, in order of their bits.
constexpr std::size_t partCount = 2 + digitCount;
constexpr std::array<BitField, partCount> parts{field::frameUnits,  field::frameTens,  field::dropFrame,
                                                field::secondUnits, field::secondTens, field::minuteUnits,
                                                field::minuteTens,  field::hourUnits,  field::hourTens};
enum Part : std::size_t { FrameUnitsPart, FrameTensPart, FlagPart, SecondUnitsPart, SecondTensPart };

/// A value for each of them.
using PartValues = std::array<int, partCount>;

/// The parts of \a label.
PartValues valuesOf(const timecode::Label &label, bool dropFrame);

/// For each frame, part and value the log-likelihood, up to what is common to all values: 0 before timecode
/// shows.
using Evidence = std::vector<std::array<std::array<double, 16>, partCount>>;

/// What each frame of \a grid by itself says. \a levels: of all half bits as they were decided, empty where
/// only digits and sync words were.
Evidence evidenceOf(const FrameGrid &grid, const std::vector<float> &levels);

/// What \a levels leave unexplained of \a grid, for each half bit.
struct Unexplained {
    double whole = 0.0;    ///< variance
    double repeated = 0.0; ///< the part of it that is the same in every frame
};

Unexplained unexplainedBy(const std::vector<float> &levels, const FrameGrid &grid);

} // namespace ltcreader
