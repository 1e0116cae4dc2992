// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decoder/finding.h"
#include "ltcreader/edge/edgereader.h"

#include <optional>

namespace ltcreader
{

/// The likeliest timecode of a channel, and what keeps it from being an answer.
struct ChannelOutcome {
    std::optional<Finding> likeliest;
    Doubt doubt = Doubt::NoTimecode;
};

/// Reads one channel of a window: by its edges while it comes in, and in every other way once it is complete.
class ChannelReader
{
public:
    /// \a wanted restricts the rate.
    ChannelReader(const Window &window, int channel, Algorithm algorithm,
                  const std::optional<timecode::Rate> &wanted);

    /// Takes in what the window holds from sample \a from on. A finding when it is beyond doubt.
    std::optional<Finding> follow(std::size_t from);

    /// Tries what the algorithm allows on the whole window.
    ChannelOutcome readThoroughly() const;

private:
    /// A track and the frames that it was found among.
    struct EdgeReading {
        std::optional<LabelTrack> track;
        std::vector<Frame> frames;
        Algorithm algorithm;
    };

    EdgeReading readingOf(const EdgeReader &reader, Algorithm way) const;
    std::vector<EdgeReading> readings() const;
    Doubt doubtAbout(const EdgeReading &reading, const std::vector<EdgeReading> &all) const;
    /// Whether nothing outside the track of \a reading can contradict it: its count is proven, and it
    /// begins where sound begins.
    bool standsAlone(const EdgeReading &reading) const;
    ChannelOutcome outcomeOf(const EdgeReading &reading, const std::vector<EdgeReading> &all) const;

    const Window &window;
    int channel;
    Algorithm algorithm;
    std::optional<timecode::Rate> wanted;
    EdgeReader edges; ///< in the ordinary way, or the one that was chosen
};

} // namespace ltcreader
