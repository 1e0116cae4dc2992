// SPDX-License-Identifier: MIT
#include "tooladapter/rules/trackrules.h"

#include "tooladapter/rules/names.h"
#include "tooladapter/rules/refusal.h"

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

/// Whether \a track is to stay as it is. The application says so; for other callers, a list without streams
/// names one codec for all, and one that is none of the two PCM types to choose from is that of a single
/// stream, named so that it passes through.
bool passesThrough(const AudioTrack &track, const ExportPlan &plan, SoundType sound)
{
    const bool isChosen = track.codec == "pcm_s16le" || track.codec == "pcm_s24le";
    return sound == SoundType::PassThrough || track.codec.empty() ||
           (sound == SoundType::Unknown && !plan.streamsAreNamed && !isChosen);
}

/// The codec that takes \a stream over as it is, or at the depth that holds most others.
std::string ownCodec(const Stream &stream)
{
    const bool isKept = isOneOf(keptPcm, stream.codec) || isOneOf(lossyCodecs, stream.codec);
    return isKept ? stream.codec : "pcm_s24be";
}

/// The rate [bit/s] at which \a track, which was lossy in \a stream already, is coded again: for each channel
/// at least the source's.
long lossyBitRate(const Stream &stream, const AudioTrack &track)
{
    constexpr long lowest = 128'000;    // a channel; all these are in [bit/s]
    constexpr long otherwise = 192'000; // a channel, if the source does not state it; cameras use no more
    constexpr std::array<long, 19> ac3Rates{32'000,  40'000,  48'000,  56'000,  64'000,  80'000,  96'000,
                                            112'000, 128'000, 160'000, 192'000, 224'000, 256'000, 320'000,
                                            384'000, 448'000, 512'000, 576'000, 640'000};
    const auto kept =
        track.channels.empty() ? long{stream.channels} : static_cast<long>(track.channels.size());
    const long own = stream.bitRate > 0 && stream.channels > 0
                         ? (stream.bitRate + stream.channels - 1) / stream.channels
                         : otherwise;
    const long wanted = std::max(own, lowest) * kept;
    if (track.codec != "ac3")
        return wanted;
    const auto *const rate = std::lower_bound(ac3Rates.begin(), ac3Rates.end(), wanted);
    return rate == ac3Rates.end() ? ac3Rates.back() : *rate;
}

std::string heldCodec(Container container, const std::string &codec)
{
    if (container == Container::Mxf)
        return isOneOf(shallowCodecs, codec) ? "pcm_s16le" : "pcm_s24le";
    if (container == Container::Wave)
        return codec.starts_with("pcm_") ? littleEndian(codec) : "pcm_s24le";
    return codec;
}

std::string codecOf(SoundType sound)
{
    if (sound == SoundType::Pcm16)
        return "pcm_s16le";
    return sound == SoundType::Pcm24 ? "pcm_s24le" : "";
}

} // namespace

void takeAllStreams(ExportPlan &plan, const Source &source, const Hints &hints)
{
    const bool isWave = plan.container == Container::Wave;
    const bool leavesTimecode = hints.timecodeChannel || noteIn(plan.metadata, "time_reference");
    if (plan.streamsAreNamed && (!plan.tracks.empty() || leavesTimecode))
        return;
    if (!plan.streamsAreNamed && isWave && plan.commonCodec.empty() && leavesTimecode)
        throw Refusal(plan.input + " holds nothing but the timecode that is to be left out");
    if (plan.streamsAreNamed || (isWave && plan.commonCodec.empty()))
        plan.commonCodec = codecOf(hints.sound);
    plan.streamsAreNamed = false;
    plan.takesPicture = !isWave;
    for (const int stream : source.audioStreams())
        plan.tracks.push_back({stream, plan.commonCodec, {}});
}

void chooseCodecs(ExportPlan &plan, const Source &source, SoundType sound)
{
    for (AudioTrack &track : plan.tracks) {
        const Stream &stream = source.at(track.stream);
        track.codec =
            heldCodec(plan.container, passesThrough(track, plan, sound) ? ownCodec(stream) : track.codec);
        if (!isOneOf(lossyCodecs, track.codec))
            continue;
        if (track.channels.empty() && track.codec == stream.codec)
            track.codec = "copy"; // coding it once more would only lose
        else if (track.channels.size() > lossyLayouts.size())
            track.codec = "pcm_s24le";
        else
            track.bitRate = lossyBitRate(stream, track);
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
    // Microphones have no places in a room: PCM gets no layout, so that the third does not become a
    // low-frequency effect.
    std::string layout = std::to_string(count) + 'C';
    if (count == 1 || isOneOf(lossyCodecs, track.codec))
        layout = lossyLayouts.at(count - 1);
    std::string filter = "pan=" + layout;
    for (std::size_t i = 0; i < count; ++i)
        filter += "|c" + std::to_string(i) + "=c" + std::to_string(track.channels[i]);
    return filter;
}

} // namespace tooladapter
