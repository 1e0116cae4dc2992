// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/framerate.h"

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

/// What the user has chosen for the picture of an export. The three DNxHD families are named by their data
/// rates.
enum class PictureType { Unknown, PassThrough, Mpeg2, SmallDnxhd, MediumDnxhd, LargeDnxhd };

/// What the user has chosen for the sound of an export.
enum class SoundType { Unknown, PassThrough, Pcm16, Pcm24 };

/// What the application knows of an export that its argument list cannot say. Everything is optional.
struct Hints {
    std::optional<ChannelPosition> timecodeChannel; ///< the channel to be left out
    FrameRate timecodeRate;     ///< at which the audio timecode counts; invalid = not known
    int timecodeSampleRate = 0; ///< [samples/s] that the list's time reference counts; 0 = the source's own
    PictureType picture = PictureType::Unknown;
    SoundType sound = SoundType::Unknown;
    bool isUnread = false; ///< the application did not know the source yet when it made the list
    int batchSize = 0;     ///< files that are exported together; 0 = not known
    int processors = 0;    ///< of this machine; 0 = not known
};

/// The hints of the environment; \a variable returns the value of a variable, empty where it is not set.
Hints hintsFrom(const std::function<std::string(const char *)> &variable);

} // namespace tooladapter
