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

/// How strong timecode is among the half bits of some frames.
struct Strength {
    double amplitude = 0.0; ///< of half bits of mean square 1, 0 to 1
    double rms = 1.0;       ///< of the half bits as they are
};

/// [whole frames] A shorter line than that is not looked for.
constexpr int leastStretch = 2;

/// Of the amplitude of other frames: what is weaker holds no timecode.
constexpr double absent = 0.35;

/// The strength in frames \a from to \a to - 1, as their sync words show it: \a steady where all have one
/// polarity.
Strength strengthOf(const FrameGrid &grid, int from, int to, bool steady);

/// Whether all sync words of \a grid seem to have one polarity.
bool isSteady(const FrameGrid &grid);

/// How many frames of \a grid pass before its timecode shows.
int framesBefore(const FrameGrid &grid);

} // namespace ltcreader
