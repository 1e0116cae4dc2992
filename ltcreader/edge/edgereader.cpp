// SPDX-License-Identifier: MIT
#include "ltcreader/edge/edgereader.h"

namespace ltcreader
{
namespace
{

// [s] half of the shortest half bit; slower rises are not square waves. The pulses of the slope begin at the
// edge.
constexpr double longestRise = 1e-4;

double thresholdOf(Algorithm algorithm)
{
    // Shares of the half swing.
    constexpr double low = 0.1;
    constexpr double middle = 0.3;
    constexpr double high = 0.6;
    switch (algorithm) {
    case Algorithm::Low:
        return low;
    case Algorithm::High:
        return high;
    default:
        return middle;
    }
}

} // namespace

Slicer slicerFor(Algorithm algorithm, int sampleRate)
{
    return {thresholdOf(algorithm), algorithm == Algorithm::Slope ? 0.0 : longestRise, sampleRate};
}

EdgeReader::EdgeReader(Algorithm algorithm, int sampleRate)
    : slicer(slicerFor(algorithm, sampleRate)), decoder(sampleRate)
{
    if (algorithm == Algorithm::Slope)
        slope.emplace(sampleRate);
}

void EdgeReader::process(const float *samples, std::size_t count)
{
    if (slope) {
        filtered.assign(samples, samples + count);
        slope->process(filtered.data(), count);
        samples = filtered.data();
    }
    edges.clear();
    slicer.process(samples, count, edges);
    for (const Edge &edge : edges) {
        decoder.process(edge, found);
    }
}

const std::vector<Frame> &EdgeReader::frames() const
{
    return found;
}

} // namespace ltcreader
