// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/algorithm.h"
#include "ltcreader/edge/biphasedecoder.h"
#include "ltcreader/edge/slicer.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace ltcreader
{

/// The slicer with which \a algorithm, any but Automatic, sees edges at \a sampleRate [Hz].
Slicer slicerFor(Algorithm algorithm, int sampleRate);

/// Reads LTC from the edges of one channel: cheap, and right wherever the edges can be seen.
class EdgeReader
{
public:
    /// \a algorithm: any but Automatic. \a sampleRate [Hz].
    EdgeReader(Algorithm algorithm, int sampleRate);

    /// Takes \a samples, \a count values that follow the earlier ones.
    void process(const float *samples, std::size_t count);

    /// All frames up to now, in order of time.
    const std::vector<Frame> &frames() const;

private:
    std::optional<SlopeFilter> slope;
    Slicer slicer;
    BiphaseDecoder decoder;
    std::vector<float> filtered; ///< the slopes of a block
    std::vector<Edge> edges;     ///< of a block
    std::vector<Frame> found;
};

} // namespace ltcreader
