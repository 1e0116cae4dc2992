// SPDX-License-Identifier: MIT
#include "ltcreader/channelreader.h"

#include <cstddef>

namespace ltcreader
{
namespace
{

Algorithm firstTried(Algorithm algorithm)
{
    return algorithm == Algorithm::Automatic ? Algorithm::Mid : algorithm;
}

} // namespace

ChannelReader::ChannelReader(const Window &window, int channel, Algorithm algorithm,
                             const std::optional<FrameRate> &wanted)
    : window(window),
      channel(channel),
      algorithm(algorithm),
      wanted(wanted),
      edges(firstTried(algorithm), window.sampleRate())
{
}

std::optional<FrameChain> ChannelReader::chainOf(const EdgeReader &reader) const
{
    return findChain(reader.frames(), window.sampleRate(), wanted);
}

std::optional<Finding> ChannelReader::follow(std::size_t from)
{
    const std::vector<float> &samples = window.channel(channel);
    edges.process(samples.data() + from, samples.size() - from);
    const auto chain = chainOf(edges);
    if (!chain || !isSure(*chain))
        return std::nullopt;
    return toFinding(*chain, firstTried(algorithm), channel, window);
}

std::optional<Finding> ChannelReader::readThoroughly() const
{
    const std::vector<float> &samples = window.channel(channel);
    auto best = chainOf(edges);
    Algorithm bestAlgorithm = firstTried(algorithm);
    if (algorithm == Algorithm::Automatic && !(best && isClear(*best))) {
        for (const Algorithm other : {Algorithm::Slope, Algorithm::High, Algorithm::Low}) {
            EdgeReader reader(other, window.sampleRate());
            reader.process(samples.data(), samples.size());
            const auto chain = chainOf(reader);
            if (chain && (!best || chain->frames > best->frames)) {
                best = chain;
                bestAlgorithm = other;
            }
        }
    }
    if (best && (isSure(*best) || isClear(*best)))
        return toFinding(*best, bestAlgorithm, channel, window);
    // Spikes are what recordings with a steep high-pass filter consist of; summing reads them where slopes
    // cannot.
    if (algorithm == Algorithm::Automatic || algorithm == Algorithm::Slope) {
        const auto reading = readJointly(samples, window.sampleRate(), wanted);
        if (reading)
            return toFinding(*reading, channel);
    }
    if (best && isBelievable(*best))
        return toFinding(*best, bestAlgorithm, channel, window);
    return std::nullopt;
}

} // namespace ltcreader
