// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/maths/fft.h"
#include "ltcreader/sync/candidate.h"

#include <vector>

namespace ltcreader
{

/// The intersymbol interference that the whitening front end brings about: what its filter carries from each
/// half bit of a candidate into others.
class Interference
{
public:
    /// \a candidate of FrontEnd::Whitened, which must outlive this.
    explicit Interference(const Candidate &candidate);

    /// The candidate without the interference of half bits of the levels \a levels (1 or -1, 0 where not
    /// known).
    Candidate removed(const std::vector<float> &levels) const;

    /// The candidate without echoes, the interference that reaches further than a part of a frame. Where
    /// levels are wrong in a few frames this hardly bends those towards them.
    Candidate echoesRemoved(const std::vector<float> &levels) const;

    /// For each of \a rivals, levels that could be there instead of \a levels: the energy that the filter
    /// leaves of the difference, as part of what would be left of it if there was no interference.
    std::vector<double> sharesLeft(const std::vector<float> &levels,
                                   const std::vector<std::vector<float>> &rivals) const;

private:
    struct Response;
    Response responseTo(const std::vector<float> &levels) const;
    Spectrum filtered(Spectrum waves, const Spectrum &gains) const;
    Candidate without(const std::vector<float> &interference, bool isEqualised) const;
    double ownPart() const;

    const Candidate &candidate;
    double own; ///< the part of each half bit that its own level brings
};

} // namespace ltcreader
