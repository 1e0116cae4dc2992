// SPDX-License-Identifier: MIT

// A decision adds up all frames, on the assumption that one line of labels runs through all of them and that
// user bits stand still. Both are checked here, frame by frame.

#include "ltcreader/verification/linecheck.h"

#include "ltcreader/frontend/prewhitener.h"
#include "ltcreader/sync/integrateanddump.h"
#include "ltcreader/verification/beginning.h"
#include "ltcreader/verification/frameevidence.h"
#include "ltcreader/verification/sequentialtest.h"
#include "ltcreader/verification/strength.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ltcreader
{
namespace
{

// [log-likelihood ratios]
constexpr double otherBeginning = -3.2;       // for something else there, where the answer would be wrong
constexpr double otherBeginningLearnt = -5.0; // where half bits may have been bent towards the decision
constexpr double otherMotion = -5.0;          // for labels that do not count up, which are rare

constexpr double latestProof = 0.08; // share of the frames that may pass before
constexpr double quiet = 0.5;        // times the level of the rest: too little to hide other labels

/// The frame of \a grid by which a line must be proven: later where it begins late, behind silence.
int latestProofIn(const FrameGrid &grid, const std::vector<float> &samples, double frameLength)
{
    const int first = firstWholeFrame(grid);
    const double beginning = first * frameLength;
    const bool isSilent = levelBetween(samples, 0.0, beginning) <=
                          quiet * levelBetween(samples, beginning, static_cast<double>(samples.size()));
    return std::max(isSilent ? first : 0, static_cast<int>(latestProof * grid.frames));
}

/// The doubt about \a line in \a samples, \a frameLength [samples] each frame. \a motion: the log-likelihood
/// ratio that labels which do not count up may have.
Doubt doubtAbout(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                 const std::vector<float> &samples, double frameLength, double motion)
{
    const AlternativeLines alternatives(line, evidenceOf(grid, levels));
    const int leastEnd = leastStretch - (grid.firstHalf < 0 ? 0 : 1);
    return testSequentially(alternatives, residualVariance(levels, grid), leastEnd,
                            latestProofIn(grid, samples, frameLength),
                            grid.isDecisionDirected ? otherBeginningLearnt : otherBeginning, motion);
}

} // namespace

Doubt doubtAboutLine(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                     const std::vector<float> &samples, double frameLength)
{
    return doubtAbout(line, grid, levels, samples, frameLength, otherMotion);
}

Doubt doubtAboutTrack(const LabelTrack &track, const std::vector<float> &samples, int sampleRate)
{
    // Behind the track its clock would run out of step.
    const auto end = std::min(samples.size(), static_cast<std::size_t>(track.last));
    const std::vector<float> part(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(end));
    const FilteredSound sound = Prewhitener(part, sampleRate).prepare(FrontEnd::Flat);
    const double perSample = sound.sampleRate / sampleRate;
    Clock clock;
    clock.bitLength = track.frameLength * perSample / bitsPerFrame;
    const double start = track.first * perSample;
    const double bitsBefore = std::floor(start / clock.bitLength);
    clock.knotDistance = static_cast<double>(part.size()) * perSample;
    clock.knots = {start - bitsBefore * clock.bitLength};
    const auto syncBit = (static_cast<std::int64_t>(bitsBefore) + dataBits) % bitsPerFrame;
    const FrameGrid grid =
        cutIntoFrames(integrateHalfBits(sound, clock, 0.0), static_cast<std::size_t>(2 * syncBit));
    const double frameZero = (clock.position(0.5 * grid.firstHalf)) / perSample;
    const LabelLine line{track.rate, std::llround(track.startCount + frameZero / track.frameLength)};
    if (isPrecededByAnother(grid, sound, clock))
        return Doubt::Jump;
    if (isMaskedBefore(grid, part, track.frameLength))
        return Doubt::TooNoisy;
    // That labels count up was read.
    return doubtAbout(line, grid, {}, part, track.frameLength, contradiction);
}

} // namespace ltcreader
