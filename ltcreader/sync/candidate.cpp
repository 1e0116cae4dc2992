// SPDX-License-Identifier: MIT
#include "ltcreader/sync/candidate.h"

#include "ltcreader/frame/codeword.h"
#include "ltcreader/frontend/regularisedinverse.h"
#include "ltcreader/sync/integrateanddump.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr std::size_t clocksPerFrontEnd = 3;
constexpr double shortest = 0.1;       // [s] two frames
constexpr double leastSyncScore = 5.0; // chance alone reaches 3.5 at the best of 80 places
constexpr double leastPeak = 2.4;      // times the sidelobes: tones reach 2.3, timecode that can be read 3.1

/// Cuts \a sound by \a clock in the ways that suit the front end, and keeps what shows sync words.
void addCandidates(FrontEnd frontEnd, const std::shared_ptr<const FilteredSound> &sound, const Clock &clock,
                   std::vector<Candidate> &candidates)
{
    for (const bool isEqualised : {false, true}) {
        if (isEqualised && frontEnd != FrontEnd::Whitened)
            break;
        Candidate candidate{frontEnd, sound, isEqualised, clock, {}};
        candidate.grid = findFrames(halfBitsOf(candidate));
        if (candidate.grid.score >= std::max(leastSyncScore, leastPeak * candidate.grid.sidelobes))
            candidates.push_back(std::move(candidate));
    }
}

} // namespace

double Candidate::frameRate() const
{
    return sound->sampleRate / (bitsPerFrame * clock.bitLength);
}

std::vector<float> halfBitsOf(const Candidate &candidate)
{
    std::vector<float> halfBits = integrateHalfBits(*candidate.sound, candidate.clock, 0.0);
    if (!candidate.isEqualised)
        return halfBits;
    const double halfBit = 0.5 * candidate.clock.bitLength / candidate.sound->sampleRate; // [s]
    return equaliseByInverse(halfBits, *candidate.sound, halfBit);
}

void cutAgain(Candidate &candidate)
{
    FrameGrid grid = cutIntoFrames(halfBitsOf(candidate), candidate.grid.syncPlace());
    grid.score = candidate.grid.score;
    grid.sidelobes = candidate.grid.sidelobes;
    candidate.grid = std::move(grid);
}

std::vector<Candidate> findCandidates(const std::vector<float> &samples, int sampleRate)
{
    std::vector<Candidate> candidates;
    if (static_cast<double>(samples.size()) < shortest * sampleRate)
        return candidates;
    const Prewhitener prewhitener(samples, sampleRate);
    for (const FrontEnd frontEnd : {FrontEnd::Whitened, FrontEnd::Flat, FrontEnd::Equalised}) {
        auto sound = std::make_shared<FilteredSound>(prewhitener.prepare(frontEnd));
        double bitLength = 0.0; // [samples] that the whitening filter spares
        for (const Clock &clock : recoverClocks(*sound, clocksPerFrontEnd)) {
            if (frontEnd == FrontEnd::Whitened && clock.bitLength != bitLength) {
                bitLength = clock.bitLength;
                const double frameRate = sound->sampleRate / (bitsPerFrame * bitLength);
                sound = std::make_shared<FilteredSound>(prewhitener.prepare(frontEnd, frameRate));
            }
            addCandidates(frontEnd, sound, clock, candidates);
        }
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate &a, const Candidate &b) { return a.grid.score > b.grid.score; });
    return candidates;
}

} // namespace ltcreader
