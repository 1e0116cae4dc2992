// SPDX-License-Identifier: MIT
#include "tooladapter/exportrules.h"

#include "tooladapter/refusal.h"
#include "tooladapter/starttimecode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

constexpr std::array shallowCodecs{"pcm_s16le"sv, "pcm_s16be"sv, "pcm_u16le"sv,
                                   "pcm_u16be"sv, "pcm_s8"sv,    "pcm_u8"sv}; // 16 bits hold all of them
constexpr std::array lossyCodecs{"aac"sv, "ac3"sv};

const Option copiedPicture{"-vcodec", "copy"};

template <typename Names>
bool isOneOf(const Names &names, const std::string &name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string littleEndian(std::string codec)
{
    if (codec.ends_with("be"))
        codec.replace(codec.size() - 2, 2, "le");
    return codec;
}

/// The rate at which the written picture will run: a coder's own "-r", or that of the source.
FrameRate pictureRate(const ExportPlan &plan, const Stream &picture)
{
    FrameRate coded;
    bool isCopied = false;
    for (const Option &option : plan.pictureOptions) {
        if (option.name == "-r")
            coded = FrameRate::fromText(option.value);
        isCopied = isCopied || option == copiedPicture;
    }
    if (coded.isValid())
        return coded;
    if (!picture.baseRate.isValid() || !picture.averageRate.isValid())
        return picture.averageRate.isValid() ? picture.averageRate : picture.baseRate;
    // A copy keeps its time stamps. A coder makes a constant rate of a wavering one, but takes frames, not
    // fields.
    const bool isConstant =
        std::abs(1.0 - picture.averageRate.perSecond() / picture.baseRate.perSecond()) <= 0.1;
    return isCopied || !isConstant ? picture.averageRate : picture.baseRate;
}

/// Takes every audio stream where the list names none, and gives each its codec.
void chooseTracks(ExportPlan &plan, const Source &source)
{
    if (!plan.streamsAreNamed) {
        if (plan.container == Container::Wave && plan.commonCodec.empty())
            throw Refusal(plan.input + " holds nothing but the timecode that is to be left out");
        plan.takesPicture = plan.container != Container::Wave;
        for (const int stream : source.audioStreams())
            plan.tracks.push_back({stream, plan.commonCodec, {}});
    }
    for (AudioTrack &track : plan.tracks) {
        const Stream &stream = source.streams[static_cast<std::size_t>(track.stream)];
        const bool isFixedDepth = track.codec == "pcm_s16le" || track.codec == "pcm_s24le";
        // Without named streams, any other codec is that of one stream, chosen so that it passes through.
        if (!plan.streamsAreNamed && !isFixedDepth &&
            (stream.codec.starts_with("pcm_") || isOneOf(lossyCodecs, stream.codec)))
            track.codec = stream.codec;
        track.codec = codecFor(plan.container, track.codec, stream);
        const bool isLossy = isOneOf(lossyCodecs, track.codec);
        if (isLossy && track.channels.empty() && track.codec == stream.codec)
            track.codec = "copy"; // coding it once more would only lose
        else if (isLossy && track.channels.size() > 6)
            track.codec = "pcm_s24le"; // beyond what these codecs have layouts for
    }
}

/// The filter that keeps the channels of \a track, in order.
std::string channelFilter(const AudioTrack &track)
{
    constexpr std::array codedLayouts{"mono"sv, "stereo"sv, "3.0"sv, "4.0"sv, "5.0"sv, "5.1"sv};
    const std::size_t count = track.channels.size();
    // Microphones have no places in a room: PCM gets no layout, lest the third one becomes a low-frequency
    // effect.
    std::string filter = "pan=" + std::to_string(count) + "C";
    if (count == 1 || isOneOf(lossyCodecs, track.codec))
        filter = "pan=" + std::string{codedLayouts.at(count - 1)};
    for (std::size_t i = 0; i < count; ++i)
        filter += "|c" + std::to_string(i) + "=c" + std::to_string(track.channels[i]);
    return filter;
}

std::string startTimecode(const ExportPlan &plan, const Source &source, int picture,
                          const FrameRate &timecodeRate)
{
    const StartTimecode timecode = StartTimecode::fromText(*plan.timecode);
    FrameRate counted = timecodeRate;
    if (plan.readerRate) {
        counted = FrameRate::fromText(*plan.readerRate);
        if (!counted.isValid())
            throw Refusal("the frame rate of the timecode " + timecode.toText() + " is not known");
    }
    if (picture < 0) {
        const FrameRate own = counted.isValid() ? counted : FrameRate{30000, 1001};
        return timecodeAtRate(timecode, own.nominal(), own);
    }
    const FrameRate rate = pictureRate(plan, source.streams[static_cast<std::size_t>(picture)]);
    if (!rate.isValid())
        throw Refusal("the frame rate of the picture is not known");
    return timecodeAtRate(timecode,
                          counted.isValid() ? counted.nominal() : impliedNominalRate(timecode, rate), rate);
}

/// What the kind of file needs to hold all that it is given.
void addContainerOptions(Options &options, const ExportPlan &plan, bool hasPicture)
{
    if (plan.container == Container::Mxf)
        options.push_back({"-ar", "48000"}); // the only rate that can be written
    if (plan.container == Container::Wave)
        options.push_back({"-rf64", "auto"}); // long takes pass 4 GiB
    if (plan.container == Container::QuickTime && !hasPicture && plan.timecode)
        options.push_back({"-movflags", "use_metadata_tags"}); // without a picture there is no timecode track
}

} // namespace

std::string filePath(const std::string &path)
{
    const bool isMisread = path.starts_with('-') || path.find(':') < path.find('/');
    return isMisread ? "./" + path : path;
}

std::string codecFor(Container container, const std::string &asked, const Stream &source)
{
    const std::string codec = asked.empty() ? source.codec : asked;
    if (container == Container::Mxf)
        return isOneOf(shallowCodecs, codec) ? "pcm_s16le" : "pcm_s24le";
    if (container == Container::Wave)
        return codec.starts_with("pcm_") ? littleEndian(codec) : "pcm_s24le";
    return asked;
}

Export exportOf(ExportPlan plan, const Source &source, const FrameRate &timecodeRate)
{
    chooseTracks(plan, source);
    Export result;
    result.path = filePath(plan.output);
    result.pictureStream = plan.takesPicture ? source.firstPicture() : -1;
    if (result.pictureStream < 0 && plan.container == Container::Mxf)
        throw Refusal(plan.input + " has no picture, and MXF files are not written without one");
    if (result.pictureStream < 0 && plan.tracks.empty())
        throw Refusal("nothing of " + plan.input + " is left to be written");

    Options options;
    if (result.pictureStream >= 0)
        options.push_back({"-map", "0:" + std::to_string(result.pictureStream)});
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const AudioTrack &track = plan.tracks[i];
        const Stream &stream = source.streams[static_cast<std::size_t>(track.stream)];
        options.push_back({"-map", "0:" + std::to_string(track.stream)});
        if (!track.codec.empty())
            options.push_back({"-c:a:" + std::to_string(i), track.codec});
        if (!track.channels.empty())
            options.push_back({"-filter:a:" + std::to_string(i), channelFilter(track)});
        result.audio.push_back({track.stream, track.channels.empty()
                                                  ? stream.channels
                                                  : static_cast<int>(track.channels.size())});
    }
    addContainerOptions(options, plan, result.pictureStream >= 0);
    options.insert(options.end(), plan.metadata.begin(), plan.metadata.end());
    if (result.pictureStream >= 0)
        options.insert(options.end(), plan.pictureOptions.begin(), plan.pictureOptions.end());
    if (plan.timecode) {
        result.timecode = startTimecode(plan, source, result.pictureStream, timecodeRate);
        options.push_back({"-timecode", result.timecode});
    }
    Options general{{"-y", {}}};
    // A copy stops at the first error; a coder may meet damaged pictures and go on after them.
    if (result.pictureStream < 0 || std::find(options.begin(), options.end(), copiedPicture) != options.end())
        general.push_back({"-xerror", {}});
    result.arguments = renderArguments({general, filePath(plan.input), {{options, result.path}}});
    return result;
}

} // namespace tooladapter
