// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/doubt.h"
#include "ltcreader/verification/frameevidence.h"
#include "timecode/timecode.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace ltcreader
{

/// A line of labels: one for each frame of a grid, counting up.
struct LabelLine {
    timecode::Rate rate;
    std::int64_t count = 0; ///< [frames] since midnight of frame 0 of the grid
};

/// Logarithms of the likelihood ratio of an alternative against the line, in each frame.
using LikelihoodRatios = std::vector<double>;

/// Alternatives of one kind, of which at most one can be true.
struct Alternatives {
    Doubt doubt; ///< that they raise
    std::vector<LikelihoodRatios> ratios;
};

/// What the frames of a recording may carry instead of a line of labels.
class AlternativeLines
{
public:
    /// \a evidence: what the frames say.
    AlternativeLines(const LabelLine &line, Evidence evidence);

    std::size_t frames() const;

    Alternatives nearCounts() const;   ///< the line one or two frames, a second, a minute or an hour away
    Alternatives otherMotions() const; ///< labels that do not count up
    /// Lines that differ in the frame number, the second or one digit.
    std::vector<Alternatives> digits() const;

private:
    using Change = std::function<PartValues(PartValues values, int frame)>;

    std::vector<PartValues> labelsFrom(std::int64_t count) const;
    LikelihoodRatios ratiosOf(const Change &change) const;
    Alternatives otherNumbers() const;
    Alternatives otherSeconds() const;
    Alternatives otherValues(std::size_t part) const;

    Evidence evidence;
    LabelLine line;
    std::vector<PartValues> labels;  ///< of the line
    std::vector<double> likelihoods; ///< [log] of these
};

} // namespace ltcreader
