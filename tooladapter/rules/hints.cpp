// SPDX-License-Identifier: MIT
#include "tooladapter/rules/hints.h"

#include "tooladapter/rules/argumentlist.h"
#include "tooladapter/rules/source.h"

#include <algorithm>
#include <array>
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

PictureType pictureFrom(const std::string &text)
{
    constexpr std::array<std::pair<std::string_view, PictureType>, 5> types{
        {{"pass", PictureType::PassThrough},
         {"mpeg2", PictureType::Mpeg2},
         {"dnxhd-36", PictureType::SmallDnxhd},
         {"dnxhd-115", PictureType::MediumDnxhd},
         {"dnxhd-175", PictureType::LargeDnxhd}}};
    const auto *const found =
        std::find_if(types.begin(), types.end(), [&text](const auto &type) { return type.first == text; });
    return found == types.end() ? PictureType::Unknown : found->second;
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
    hints.picture = pictureFrom(variable("OSTREL_PICTURE"));
    hints.sound = soundFrom(variable("OSTREL_SOUND"));
    hints.isUnread = hints.sound != SoundType::Unknown && variable("OSTREL_SOURCE").empty();
    hints.batchSize = numberFrom(variable("OSTREL_BATCH_SIZE")).value_or(0);
    return hints;
}

} // namespace tooladapter
