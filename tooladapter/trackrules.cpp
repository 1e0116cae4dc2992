// SPDX-License-Identifier: MIT
#include "tooladapter/trackrules.h"

#include "tooladapter/refusal.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

constexpr std::array shallowCodecs{"pcm_s16le"sv, "pcm_s16be"sv, "pcm_u16le"sv,
                                   "pcm_u16be"sv, "pcm_s8"sv,    "pcm_u8"sv}; // 16 bits hold all of them
constexpr std::array keptPcm{"pcm_s16le"sv, "pcm_s16be"sv, "pcm_s24le"sv, "pcm_s24be"sv, "pcm_s32le"sv,
                             "pcm_s32be"sv, "pcm_f32le"sv, "pcm_f32be"sv, "pcm_f64le"sv, "pcm_f64be"sv,
                             "pcm_alaw"sv,  "pcm_mulaw"sv, "pcm_s8"sv,    "pcm_u8"sv};
constexpr std::array lossyCodecs{"aac"sv, "ac3"sv};
constexpr std::array lossyLayouts{"mono"sv, "stereo"sv, "3.0"sv, "4.0"sv, "5.0"sv, "5.1"sv}; // by channels

template <typename Names>
bool isOneOf(const Names &names, const std::string &name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr double shortestSilence = 0.001; // [s] a small part of any frame

std::string thousandths(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f", number);
    return text.data();
}

std::string littleEndian(std::string codec)
{
    if (codec.ends_with("be"))
        codec.replace(codec.size() - 2, 2, "le");
    return codec;
}

/// Whether the sound is to stay as it is. The application says so; for other callers, a list without streams
/// names one codec for all, and one that is none of the two PCM types to choose from is that of a single
/// stream, named so that it passes through.
bool passesThrough(const ExportPlan &plan, SoundType sound)
{
    const bool isChosen = plan.commonCodec == "pcm_s16le" || plan.commonCodec == "pcm_s24le";
    return sound == SoundType::PassThrough ||
           (sound == SoundType::Unknown && !plan.streamsAreNamed && !isChosen);
}

/// The codec that takes \a stream over as it is, or at the depth that holds most others.
std::string ownCodec(const Stream &stream)
{
    const bool isKept = isOneOf(keptPcm, stream.codec) || isOneOf(lossyCodecs, stream.codec);
    return isKept ? stream.codec : "pcm_s24be";
}

std::string heldCodec(Container container, const std::string &codec)
{
    if (container == Container::Mxf)
        return isOneOf(shallowCodecs, codec) ? "pcm_s16le" : "pcm_s24le";
    if (container == Container::Wave)
        return codec.starts_with("pcm_") ? littleEndian(codec) : "pcm_s24le";
    return codec;
}

} // namespace

void takeAllStreams(ExportPlan &plan, const Source &source)
{
    if (plan.streamsAreNamed)
        return;
    if (plan.container == Container::Wave && plan.commonCodec.empty())
        throw Refusal(plan.input + " holds nothing but the timecode that is to be left out");
    plan.takesPicture = plan.container != Container::Wave;
    for (const int stream : source.audioStreams())
        plan.tracks.push_back({stream, plan.commonCodec, {}});
}

void chooseCodecs(ExportPlan &plan, const Source &source, SoundType sound)
{
    const bool staysItself = passesThrough(plan, sound);
    for (AudioTrack &track : plan.tracks) {
        const Stream &stream = source.streams[static_cast<std::size_t>(track.stream)];
        track.codec = heldCodec(plan.container, staysItself ? ownCodec(stream) : track.codec);
        if (!isOneOf(lossyCodecs, track.codec))
            continue;
        if (track.channels.empty() && track.codec == stream.codec)
            track.codec = "copy"; // coding it once more would only lose
        else if (track.channels.size() > lossyLayouts.size())
            track.codec = "pcm_s24le";
    }
}

std::string delayFilter(double delay)
{
    return delay < shortestSilence ? std::string() : "adelay=" + thousandths(delay * 1000) + ":all=1";
}

std::string endingFilter(double missing)
{
    // Coders end where their blocks do; what reaches beyond the picture is not written.
    constexpr double reserve = 0.1; // [s]
    const bool isAdded = missing >= shortestSilence && missing <= longestSilence;
    return isAdded ? "apad=pad_dur=" + thousandths(missing + reserve) : std::string();
}

std::string channelFilter(const AudioTrack &track)
{
    const std::size_t count = track.channels.size();
    // Microphones have no places in a room: PCM gets no layout, lest the third becomes a low-frequency
    // effect.
    std::string layout = std::to_string(count) + 'C';
    if (count == 1 || isOneOf(lossyCodecs, track.codec))
        layout = lossyLayouts.at(count - 1);
    std::string filter = "pan=" + layout;
    for (std::size_t i = 0; i < count; ++i)
        filter += "|c" + std::to_string(i) + "=c" + std::to_string(track.channels[i]);
    return filter;
}

} // namespace tooladapter
