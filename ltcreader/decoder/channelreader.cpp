// SPDX-License-Identifier: MIT
#include "ltcreader/decoder/channelreader.h"

#include "ltcreader/frame/rateclass.h"
#include "ltcreader/verification/linecheck.h"

#include <algorithm>
#include <cstddef>

namespace ltcreader
{
namespace
{

Algorithm firstTried(Algorithm algorithm)
{
    return algorithm == Algorithm::Automatic ? Algorithm::Mid : algorithm;
}

/// Whether \a doubt says that frames carry something else, not that they are hard to read.
bool isOfLabels(Doubt doubt)
{
    return doubt != Doubt::None && doubt != Doubt::NoTimecode && doubt != Doubt::TooNoisy &&
           doubt != Doubt::RateClass;
}

} // namespace

ChannelReader::ChannelReader(const Window &window, int channel, Algorithm algorithm,
                             const std::optional<timecode::Rate> &wanted)
    : window(window),
      channel(channel),
      algorithm(algorithm),
      wanted(wanted),
      edges(firstTried(algorithm), window.sampleRate())
{
}

ChannelReader::Track ChannelReader::trackOf(const EdgeReader &reader, Algorithm way) const
{
    return {findChain(reader.frames(), window.sampleRate(), wanted), reader.frames(), way};
}

std::optional<Finding> ChannelReader::follow(std::size_t from)
{
    const std::vector<float> &samples = window.channel(channel);
    edges.process(samples.data() + from, samples.size() - from);
    const Track track = trackOf(edges, firstTried(algorithm));
    if (!track.chain || !isSure(*track.chain) || doubtAbout(track) != Doubt::None)
        return std::nullopt;
    return toFinding(*track.chain, track.algorithm, channel, window);
}

/// In all ways that the algorithm allows, up to one that is clear.
std::vector<ChannelReader::Track> ChannelReader::tracks() const
{
    std::vector<Track> all{trackOf(edges, firstTried(algorithm))};
    if (algorithm != Algorithm::Automatic)
        return all;
    const std::vector<float> &samples = window.channel(channel);
    for (const Algorithm other : {Algorithm::Slope, Algorithm::High, Algorithm::Low}) {
        if (all.front().chain && isClear(*all.front().chain))
            break;
        EdgeReader reader(other, window.sampleRate());
        reader.process(samples.data(), samples.size());
        all.push_back(trackOf(reader, other));
    }
    return all;
}

Doubt ChannelReader::doubtAbout(const Track &track) const
{
    const FrameChain &chain = *track.chain;
    if (isContradictedBefore(chain, track.frames))
        return Doubt::Jump;
    if (carriesFalseFlag(chain, track.frames))
        return Doubt::FalseFlag;
    const Doubt speed = doubtAboutSpeed(chain.rate, chain.wraps + 1, chain.frameLength, chain.lengthDeviation,
                                        window.sampleRate(), wanted);
    if (speed != Doubt::None || (isClear(chain) && beginsWithRecording(chain)))
        return speed;
    return doubtAboutChain(chain, window.channel(channel), window.sampleRate());
}

ChannelOutcome ChannelReader::outcomeOf(const Track &track) const
{
    return {toFinding(*track.chain, track.algorithm, channel, window), doubtAbout(track)};
}

bool ChannelReader::standsAlone(const FrameChain &chain) const
{
    constexpr int provingFrames = 10; // in a row; fewer may fit the count of another rate
    constexpr double latestEnd = 2.0; // [frames] more than that behind a row could show another count
    constexpr double quiet = 0.5;     // times the row's level: too little to hide timecode
    const auto end = static_cast<double>(window.size());
    const bool countsProven =
        chain.wraps > 0 || chain.frames >= provingFrames || chain.last > end - latestEnd * chain.frameLength;
    return countsProven &&
           (beginsWithRecording(chain) ||
            window.level(channel, 0.0, chain.first) < quiet * window.level(channel, chain.first, chain.last));
}

ChannelOutcome ChannelReader::readThoroughly() const
{
    const std::vector<Track> all = tracks();
    const auto longest = std::max_element(all.begin(), all.end(), [](const Track &a, const Track &b) {
        return (a.chain ? a.chain->frames : 0) < (b.chain ? b.chain->frames : 0);
    });
    if (longest->chain && isClear(*longest->chain) && standsAlone(*longest->chain))
        return outcomeOf(*longest);
    // Labels that were read and do not count up are the truth, even if a sum over all frames says otherwise.
    for (const Track &track : all) {
        const Doubt labels = doubtAboutLabels(track.frames);
        if (labels != Doubt::None)
            return {std::nullopt, labels};
    }
    std::optional<ChannelOutcome> byEdges;
    if (longest->chain && isBelievable(*longest->chain))
        byEdges = outcomeOf(*longest);
    // Spikes are what recordings with a steep high-pass filter consist of; summing reads them where slopes
    // cannot.
    if (algorithm != Algorithm::Automatic && algorithm != Algorithm::Slope)
        return byEdges.value_or(ChannelOutcome());
    const JointOutcome joint = readJointly(window.channel(channel), window.sampleRate(), wanted);
    ChannelOutcome jointly{std::nullopt, joint.doubt};
    if (joint.likeliest)
        jointly.likeliest = toFinding(*joint.likeliest, channel);
    if (!byEdges)
        return jointly;
    if (isOfLabels(jointly.doubt) && !standsAlone(*longest->chain))
        byEdges->doubt = jointly.doubt;
    if (jointly.doubt != Doubt::None || isOfLabels(byEdges->doubt))
        return *byEdges;
    if (contradict(*byEdges->likeliest, *jointly.likeliest))
        jointly.doubt = Doubt::TwoTimecodes;
    return jointly;
}

} // namespace ltcreader
