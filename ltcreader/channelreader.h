// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edgereader.h"
#include "ltcreader/finding.h"

#include <optional>

namespace ltcreader
{

/// Reads one channel of a window: by its edges while it comes in, and in every other way once it is complete.
class ChannelReader
{
public:
    /// \a wanted restricts the rate.
    ChannelReader(const Window &window, int channel, Algorithm algorithm,
                  const std::optional<FrameRate> &wanted);

    /// Takes in what the window holds from sample \a from on. A finding when it is beyond doubt.
    std::optional<Finding> follow(std::size_t from);

    /// Tries what the algorithm allows on the whole window.
    std::optional<Finding> readThoroughly() const;

private:
    std::optional<FrameChain> chainOf(const EdgeReader &reader) const;

    const Window &window;
    int channel;
    Algorithm algorithm;
    std::optional<FrameRate> wanted;
    EdgeReader edges; ///< in the ordinary way, or the one that was chosen
};

} // namespace ltcreader
