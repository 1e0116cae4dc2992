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

/// The likelihoods of all labels in one frame. A digit changes the polarity of all that follows it, up to the
/// phase correction bit or the end of the frame, so the frame is looked at as a whole.
class FrameEvidence
{
public:
    /// Of a frame without timecode, which speaks for no label.
    FrameEvidence() = default;

    /// \a halves: of the frame. \a levels: of its half bits as they were decided; null where only digits and
    /// sync words were. \a scale: from a correlation to a log-likelihood. \a polarity: in which the frame
    /// begins, 1 high to -1 low, 0 where it is not known.
    FrameEvidence(const float *halves, const float *levels, double scale, double polarity);

    /// The log-likelihood of the label \a values, up to what is common to all labels.
    double logLikelihood(const PartValues &values) const;

private:
    /// The weights of high and low polarity.
    using Weights = std::array<double, 2>;

    /// The bits behind each part and before the next, on one assumption.
    struct BitsBetween {
        double logWeight = 0.0;
        std::array<std::array<Weights, 2>, partCount> behind; ///< from each polarity to each
    };

    static BitsBetween bitsBetween(const float *halves, const float *levels, double scale);
    double likelihood(const PartValues &values, const BitsBetween &between) const;

    Weights atStart{};
    Weights atSync{};
    std::array<std::array<Weights, 16>, partCount> ofParts{}; ///< for each value
    std::vector<BitsBetween> assumptions;
};

/// One for each frame of a grid.
using Evidence = std::vector<FrameEvidence>;

/// What each frame of \a grid by itself says. \a levels: of all half bits as they were decided, empty where
/// only digits and sync words were.
Evidence evidenceOf(const FrameGrid &grid, const std::vector<float> &levels);

/// What \a levels leave unexplained of \a grid, for each half bit.
struct ResidualVariance {
    double total = 0.0;
    double repeated = 0.0; ///< the part of it that is the same in every frame
};

ResidualVariance residualVariance(const std::vector<float> &levels, const FrameGrid &grid);

} // namespace ltcreader
