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

constexpr double otherMotion = -5.0; // [log-likelihood ratio] for labels that do not count up, which are rare
constexpr double latestProof = 0.1;  // share of the frames that may pass before
constexpr double quiet = 0.5;        // times the level of the rest: too little to hide other labels

/// The verdict on \a line. \a motion: the log-likelihood ratio that labels which do not count up may have.
Verdict verdictOn(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                  double motion)
{
    const AlternativeLines alternatives(line, evidenceOf(grid, levels));
    const int leastEnd = leastStretch - (grid.firstHalf < 0 ? 0 : 1);
    return testSequentially(alternatives, unexplainedBy(levels, grid), leastEnd, motion);
}

/// The doubt of \a verdict on a recording of \a frames frames; a jump where a line is proven late, behind
/// sound that may hide other labels.
Doubt doubtOf(const Verdict &verdict, int frames, const std::vector<float> &samples, double frameLength)
{
    const double hidden = verdict.unproven * frameLength;
    const bool isHidden = verdict.unproven > latestProof * frames &&
                          levelBetween(samples, 0.0, hidden) >
                              quiet * levelBetween(samples, hidden, static_cast<double>(samples.size()));
    return verdict.doubt == Doubt::None && isHidden ? Doubt::Jump : verdict.doubt;
}

} // namespace

Doubt doubtAboutLine(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                     const std::vector<float> &samples, double frameLength)
{
    return doubtOf(verdictOn(line, grid, levels, otherMotion), grid.frames, samples, frameLength);
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
    const Verdict verdict = verdictOn(line, grid, {}, contradiction); // that labels count up was read
    return doubtOf(verdict, grid.frames, part, track.frameLength);
}

} // namespace ltcreader
