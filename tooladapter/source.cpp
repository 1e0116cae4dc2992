// SPDX-License-Identifier: MIT
#include "tooladapter/source.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tooladapter
{
namespace
{

// What a damaged file claims must not cost memory; the tools stop at fewer.
constexpr std::size_t mostStreams = 10'000;
constexpr int mostChannels = 512;
constexpr int longestSide = 32768; // [pixels]
constexpr std::size_t mostTags = 1000;

double toSeconds(const std::string &text)
{
    return std::strtod(text.c_str(), nullptr); // "N/A" gives 0
}

/// A time stamp [s]; none for "N/A".
std::optional<double> toTimeStamp(const std::string &text)
{
    char *end = nullptr;
    const double seconds = std::strtod(text.c_str(), &end);
    return end != text.c_str() && std::isfinite(seconds) ? std::optional(seconds) : std::nullopt;
}

/// Whether exports take \a stream over.
bool isExported(const Stream &stream)
{
    return stream.kind == Stream::Kind::Audio ||
           (stream.kind == Stream::Kind::Picture && !stream.isAttachedPicture);
}

/// The quotient that \a text, "16:15", names; 1 where it names none.
double toAspect(const std::string &text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        return 1.0;
    const double aspect = toSeconds(text) / toSeconds(text.substr(colon + 1));
    return std::isfinite(aspect) && aspect > 0.0 ? aspect : 1.0;
}

int toRotation(const std::string &text)
{
    constexpr int quarter = 90; // [degrees]
    const double degrees = toSeconds(text);
    return std::abs(degrees) <= 360.0 ? static_cast<int>(std::lround(degrees / quarter)) * quarter : 0;
}

bool readPictureKey(Stream &stream, std::string_view key, const std::string &value)
{
    if (key == "width")
        stream.width = std::clamp(std::atoi(value.c_str()), 0, longestSide);
    else if (key == "height")
        stream.height = std::clamp(std::atoi(value.c_str()), 0, longestSide);
    else if (key == "sample_aspect_ratio")
        stream.pixelAspect = toAspect(value);
    else if (key == "rotation" || key == "TAG:rotate")
        stream.rotation = toRotation(value);
    else if (key == "pix_fmt")
        stream.pixelFormat = value;
    else if (key == "color_range")
        stream.colorRange = value;
    else if (key == "color_space")
        stream.colorSpace = value;
    else if (key == "color_primaries")
        stream.colorPrimaries = value;
    else if (key == "field_order")
        stream.fieldOrder = value;
    else
        return false;
    return true;
}

void readStreamKey(Stream &stream, std::string_view key, const std::string &value)
{
    if (value == "unknown" || readPictureKey(stream, key, value)) // only some formats spell "unknown" out
        return;
    if (key == "codec_type" && value == "video")
        stream.kind = Stream::Kind::Picture;
    else if (key == "codec_type" && value == "audio")
        stream.kind = Stream::Kind::Audio;
    else if (key == "codec_name")
        stream.codec = value;
    else if (key == "channels")
        stream.channels = std::clamp(std::atoi(value.c_str()), 0, mostChannels);
    else if (key == "sample_rate")
        stream.sampleRate = std::clamp(std::atoi(value.c_str()), 0, highestSampleRate);
    else if (key == "channel_layout")
        stream.layout = value;
    else if (key == "r_frame_rate")
        stream.baseRate = FrameRate::fromText(value);
    else if (key == "avg_frame_rate")
        stream.averageRate = FrameRate::fromText(value);
    else if (key == "start_time")
        stream.start = toTimeStamp(value);
    else if (key == "duration")
        stream.duration = toSeconds(value);
    else if (key == "bit_rate")
        stream.bitRate = std::max(0L, std::strtol(value.c_str(), nullptr, 10));
    else if (key == "TAG:reel_name")
        stream.reel = value;
    else if (key == "DISPOSITION:attached_pic")
        stream.isAttachedPicture = value == "1";
    else if (key == "TAG:timecode")
        stream.timecode = value;
}

void readFormatKey(Source &source, std::string_view key, const std::string &value)
{
    constexpr std::string_view tag = "TAG:";
    if (key.starts_with(tag) && source.tags.size() < mostTags)
        source.tags.emplace(key.substr(tag.size()));
    if (key == "start_time")
        source.start = toSeconds(value);
    else if (key == "duration")
        source.duration = toSeconds(value);
    else if (key == "TAG:timecode")
        source.timecode = value;
}

} // namespace

bool Stream::isInterlaced() const
{
    return fieldOrder == "tt" || fieldOrder == "bb" || fieldOrder == "tb" || fieldOrder == "bt";
}

FrameRate Stream::frameRate() const
{
    constexpr double tolerance = 0.1;
    if (!baseRate.isValid())
        return averageRate;
    const bool countsFields = isInterlaced() && averageRate.isValid() &&
                              std::abs(baseRate.perSecond() / averageRate.perSecond() - 2.0) < tolerance;
    return countsFields ? averageRate : baseRate;
}

int Source::firstPicture() const
{
    const auto found = std::find_if(streams.begin(), streams.end(), [](const Stream &stream) {
        return stream.kind == Stream::Kind::Picture && !stream.isAttachedPicture;
    });
    return found == streams.end() ? -1 : static_cast<int>(found - streams.begin());
}

std::vector<int> Source::audioStreams() const
{
    std::vector<int> indexes;
    for (std::size_t i = 0; i < streams.size(); ++i) {
        if (streams[i].kind == Stream::Kind::Audio)
            indexes.push_back(static_cast<int>(i));
    }
    return indexes;
}

double Source::delayOf(int index) const
{
    if (index < 0 || index >= static_cast<int>(streams.size()))
        return 0.0;
    const auto own = streams[static_cast<std::size_t>(index)].start;
    if (!own)
        return 0.0;
    double first = *own;
    for (const Stream &stream : streams) {
        if (isExported(stream))
            first = std::min(first, stream.start.value_or(first));
    }
    return *own - first;
}

double Source::endOf(int index) const
{
    const Stream &own = streams[static_cast<std::size_t>(index)];
    return own.duration > 0.0 ? own.start.value_or(start) - start + own.duration : duration;
}

std::string Source::startTimecode() const
{
    const auto found = std::find_if(streams.begin(), streams.end(),
                                    [](const Stream &stream) { return !stream.timecode.empty(); });
    return timecode.empty() && found != streams.end() ? found->timecode : timecode;
}

std::vector<std::string> probeArguments(const std::string &path)
{
    const std::string entries =
        "stream=index,codec_type,codec_name,channels,sample_rate,channel_layout,r_frame_rate,"
        "avg_frame_rate,start_time,duration,width,height,sample_aspect_ratio,pix_fmt,color_range,"
        "color_space,color_primaries,field_order,bit_rate"
        ":stream_disposition=attached_pic"
        ":stream_tags=timecode,reel_name,rotate"
        ":stream_side_data=rotation"
        ":format=start_time,duration"
        ":format_tags";
    return {"-v", "error", "-show_entries", entries, "-i", path};
}

Source parseProbe(std::string_view text)
{
    Source source;
    Stream *stream = nullptr;
    bool inFormat = false;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        const std::size_t equals = line.find('=');
        if (line.ends_with("SIDE_DATA]"))
            continue; // it belongs to the stream
        if (equals == std::string_view::npos) {
            if (!line.starts_with('['))
                continue; // a note may have several lines
            stream = nullptr;
            inFormat = line == "[FORMAT]";
            continue;
        }
        const std::string_view key = line.substr(0, equals);
        const std::string value{line.substr(equals + 1)};
        if (key == "index" && !inFormat) {
            // Transport streams list their streams twice, once by programme; the index tells which is which.
            const std::size_t index = std::strtoul(value.c_str(), nullptr, 10);
            stream = nullptr;
            if (index >= mostStreams)
                continue;
            source.streams.resize(std::max(source.streams.size(), index + 1));
            stream = &source.streams[index];
        } else if (stream != nullptr) {
            readStreamKey(*stream, key, value);
        } else if (inFormat) {
            readFormatKey(source, key, value);
        }
    }
    return source;
}

} // namespace tooladapter
