// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/framerate.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace tooladapter
{

/// A stream index and a channel in it.
using ChannelPosition = std::pair<int, int>;

/// Reads "s.c"; nothing for any other text.
std::optional<ChannelPosition> channelFromText(const std::string &text);

/// What the user has chosen for the sound of an export.
enum class SoundType { Unknown, PassThrough, Pcm16, Pcm24 };

/// What the application knows of an export that its argument list cannot say. Everything is optional.
struct Hints {
    std::optional<ChannelPosition> timecodeChannel; ///< the channel to be left out
    FrameRate timecodeRate;     ///< at which the audio timecode counts; invalid = not known
    int timecodeSampleRate = 0; ///< [samples/s] that the list's time reference counts; 0 = the source's own
    SoundType sound = SoundType::Unknown;
};

/// The hints of the environment; \a variable returns the value of a variable, empty where it is not set.
Hints hintsFrom(const std::function<std::string(const char *)> &variable);

} // namespace tooladapter
