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

ChannelReader::EdgeReading ChannelReader::readingOf(const EdgeReader &reader, Algorithm way) const
{
    return {findTrack(reader.frames(), window.sampleRate(), wanted), reader.frames(), way};
}

std::optional<Finding> ChannelReader::follow(std::size_t from)
{
    const std::vector<float> &samples = window.channel(channel);
    edges.process(samples.data() + from, samples.size() - from);
    const EdgeReading reading = readingOf(edges, firstTried(algorithm));
    if (!reading.track || !isSure(*reading.track) || doubtAbout(reading, {reading}) != Doubt::None)
        return std::nullopt;
    return toFinding(*reading.track, reading.algorithm, channel, window);
}

/// In all ways that the algorithm allows, up to one that is clear.
std::vector<ChannelReader::EdgeReading> ChannelReader::readings() const
{
    std::vector<EdgeReading> all{readingOf(edges, firstTried(algorithm))};
    if (algorithm != Algorithm::Automatic)
        return all;
    const std::vector<float> &samples = window.channel(channel);
    for (const Algorithm other : {Algorithm::Slope, Algorithm::High, Algorithm::Low}) {
        if (all.front().track && isClear(*all.front().track))
            break;
        EdgeReader reader(other, window.sampleRate());
        reader.process(samples.data(), samples.size());
        all.push_back(readingOf(reader, other));
    }
    return all;
}

Doubt ChannelReader::doubtAbout(const EdgeReading &reading, const std::vector<EdgeReading> &all) const
{
    const LabelTrack &track = *reading.track;
    const bool contradicted = std::any_of(all.begin(), all.end(), [&track](const EdgeReading &other) {
        return isContradicted(track, other.frames);
    });
    if (contradicted)
        return Doubt::Jump;
    if (carriesFalseFlag(track, reading.frames))
        return Doubt::FalseFlag;
    const Doubt speed = doubtAboutSpeed(track, track.wraps + 1, window.sampleRate(), wanted);
    if (speed != Doubt::None || (isClear(track) && beginsWithRecording(track)))
        return speed;
    return doubtAboutTrack(track, window.channel(channel), window.sampleRate());
}

ChannelOutcome ChannelReader::outcomeOf(const EdgeReading &reading, const std::vector<EdgeReading> &all) const
{
    return {toFinding(*reading.track, reading.algorithm, channel, window), doubtAbout(reading, all)};
}

bool ChannelReader::standsAlone(const EdgeReading &reading) const
{
    constexpr int provingFrames = 10;   // in a row; fewer may fit the count of another rate
    constexpr int framesBeforeJump = 6; // in a row, if labels go elsewhere than any count does
    constexpr double latestEnd = 2.0;   // [frames] more than that behind a row could show another count
    constexpr double quiet = 0.5;       // times the row's level: too little to hide timecode
    const LabelTrack &track = *reading.track;
    const auto end = static_cast<double>(window.size());
    const bool countsProven = track.wraps > 0 || track.frames >= provingFrames ||
                              track.last > end - latestEnd * track.frameLength ||
                              (track.frames >= framesBeforeJump && endsAtJump(track, reading.frames));
    return countsProven &&
           (beginsWithRecording(track) ||
            window.level(channel, 0.0, track.first) < quiet * window.level(channel, track.first, track.last));
}

ChannelOutcome ChannelReader::readThoroughly() const
{
    const std::vector<float> &samples = window.channel(channel);
    std::vector<Candidate> candidates;
    if (algorithm == Algorithm::Automatic && edges.frames().empty()) {
        // A clock shows long before edges do: without one, other ways of slicing find no frame either.
        candidates = findCandidates(samples, window.sampleRate());
        if (candidates.empty())
            return {};
    }
    const std::vector<EdgeReading> all = readings();
    const auto longest =
        std::max_element(all.begin(), all.end(), [](const EdgeReading &a, const EdgeReading &b) {
            return (a.track ? a.track->frames : 0) < (b.track ? b.track->frames : 0);
        });
    if (longest->track && isClear(*longest->track) && standsAlone(*longest))
        return outcomeOf(*longest, all);
    // Labels that were read and do not count up are the truth, even if a sum over all frames says otherwise.
    for (const EdgeReading &reading : all) {
        const Doubt labels = doubtAboutLabels(reading.frames);
        if (labels != Doubt::None)
            return {std::nullopt, labels};
    }
    std::optional<ChannelOutcome> byEdges;
    if (longest->track && isBelievable(*longest->track))
        byEdges = outcomeOf(*longest, all);
    // Spikes are what recordings with a steep high-pass filter consist of; summing reads them where slopes
    // cannot.
    if (algorithm != Algorithm::Automatic && algorithm != Algorithm::Slope)
        return byEdges.value_or(ChannelOutcome());
    if (candidates.empty())
        candidates = findCandidates(samples, window.sampleRate());
    const JointOutcome joint = readJointly(candidates, samples, window.sampleRate(), wanted);
    ChannelOutcome jointly{std::nullopt, joint.doubt};
    if (joint.likeliest)
        jointly.likeliest = toFinding(*joint.likeliest, channel);
    if (!byEdges)
        return jointly;
    // Speed that no machine has is doubted however long the track is: labels may be left out within it.
    if (isOfLabels(jointly.doubt) && (!standsAlone(*longest) || jointly.doubt == Doubt::Speed))
        byEdges->doubt = jointly.doubt;
    if (jointly.doubt != Doubt::None || isOfLabels(byEdges->doubt))
        return *byEdges;
    if (contradict(*byEdges->likeliest, *jointly.likeliest))
        jointly.doubt = Doubt::TwoTimecodes;
    return jointly;
}

} // namespace ltcreader
