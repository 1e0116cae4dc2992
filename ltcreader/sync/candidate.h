// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frontend/prewhitener.h"
#include "ltcreader/sync/clockrecovery.h"
#include "ltcreader/sync/framesync.h"

#include <memory>
#include <vector>

namespace ltcreader
{

/// A way of cutting a recording into frames in which sync words show.
struct Candidate {
    FrontEnd frontEnd = FrontEnd::Flat;
    std::shared_ptr<const FilteredSound> sound;
    bool isEqualised = false; ///< by the inverse of what the front end does to neighbouring half bits
    Clock clock;
    FrameGrid grid;

    /// [frames/s] as recorded.
    double frameRate() const;
};

/// The half bits of \a candidate as its clock cuts them.
std::vector<float> halfBitsOf(const Candidate &candidate);

/// Cuts \a candidate into frames again, whose sound or clock has changed a little.
void cutAgain(Candidate &candidate);

/// The candidates in \a samples at \a sampleRate [Hz], the one with the clearest sync words first; none in
/// less than two frames.
std::vector<Candidate> findCandidates(const std::vector<float> &samples, int sampleRate);

} // namespace ltcreader
