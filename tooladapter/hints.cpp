// SPDX-License-Identifier: MIT
#include "tooladapter/hints.h"

#include "tooladapter/argumentlist.h"
#include "tooladapter/source.h"

#include <algorithm>
#include <string_view>

namespace tooladapter
{
namespace
{

SoundType soundFrom(const std::string &text)
{
    if (text == "pass")
        return SoundType::PassThrough;
    if (text == "pcm16")
        return SoundType::Pcm16;
    return text == "pcm24" ? SoundType::Pcm24 : SoundType::Unknown;
}

} // namespace

std::optional<ChannelPosition> channelFromText(const std::string &text)
{
    const std::size_t dot = text.find('.');
    if (dot == std::string::npos)
        return std::nullopt;
    const auto stream = numberFrom(std::string_view{text}.substr(0, dot));
    const auto channel = numberFrom(std::string_view{text}.substr(dot + 1));
    if (!stream || !channel)
        return std::nullopt;
    return ChannelPosition{*stream, *channel};
}

Hints hintsFrom(const std::function<std::string(const char *)> &variable)
{
    Hints hints;
    hints.timecodeChannel = channelFromText(variable("OSTREL_TIMECODE_CHANNEL"));
    hints.timecodeRate = FrameRate::fromText(variable("OSTREL_TIMECODE_RATE"));
    hints.timecodeSampleRate =
        std::min(numberFrom(variable("OSTREL_TIMECODE_SAMPLE_RATE")).value_or(0), highestSampleRate);
    hints.sound = soundFrom(variable("OSTREL_SOUND"));
    return hints;
}

} // namespace tooladapter
