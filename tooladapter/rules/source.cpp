// SPDX-License-Identifier: MIT
#include "tooladapter/rules/source.h"

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
constexpr std::size_t mostNotes = 1000;

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

struct Fact {
    std::string_view key; ///< the whole line if it holds no "="
    std::string value;
};

Fact factIn(std::string_view line)
{
    const std::size_t equals = std::min(line.find('='), line.size());
    return {line.substr(0, equals), std::string(line.substr(std::min(equals + 1, line.size())))};
}

/// Reads the probe tool's report line by line.
class ProbeReader
{
public:
    void read(std::string_view line);

    Source source; ///< what the lines so far have reported

private:
    void beginStream(std::string_view number);
    void readPacketLine(const Fact &fact);
    void readFormatLine(std::string_view line);

    Stream *stream = nullptr;    ///< of \a source, that the lines are about; nullptr = none
    bool inPacket = false;       ///< the lines are about a packet of \a stream
    std::optional<double> shown; ///< [s] time stamps of the packet
    std::optional<double> decoded;
    bool inFormat = false;       ///< the lines are about the file as a whole
    std::string *note = nullptr; ///< of \a source, the last one; its text may go on
};

void ProbeReader::read(std::string_view line)
{
    if (line.ends_with("SIDE_DATA]"))
        return; // it belongs to the stream
    if (inFormat) {
        readFormatLine(line);
        return;
    }
    const Fact fact = factIn(line);
    if (line.starts_with('[')) {
        stream = nullptr;
        inPacket = line == "[PACKET]";
        inFormat = line == "[FORMAT]";
    } else if (inPacket) {
        readPacketLine(fact);
    } else if (fact.key == "index") {
        beginStream(fact.value);
    } else if (stream != nullptr) {
        readStreamKey(*stream, fact.key, fact.value);
    }
}

/// Transport streams list their streams twice, once by programme; the index distinguishes them.
void ProbeReader::beginStream(std::string_view number)
{
    const std::size_t index = std::strtoul(std::string(number).c_str(), nullptr, 10);
    stream = nullptr;
    if (index >= mostStreams)
        return;
    source.streams.resize(std::max(source.streams.size(), index + 1));
    stream = &source.streams[index];
}

void ProbeReader::readPacketLine(const Fact &fact)
{
    if (fact.key == "stream_index")
        beginStream(fact.value);
    else if (fact.key == "pts_time")
        shown = toTimeStamp(fact.value);
    else if (fact.key == "dts_time")
        decoded = toTimeStamp(fact.value);
    if (fact.key != "duration_time" || stream == nullptr)
        return;
    const double duration = toSeconds(fact.value);
    stream->shownUntil = std::max(stream->shownUntil, shown.value_or(-duration) + duration);
    stream->decodedUntil = std::max(stream->decodedUntil, decoded.value_or(-duration) + duration);
}

/// The notes come last, and each may have several lines.
void ProbeReader::readFormatLine(std::string_view line)
{
    constexpr std::string_view tag = "TAG:";
    const Fact fact = factIn(line);
    if (line == "[/FORMAT]") {
        inFormat = false;
    } else if (fact.key.starts_with(tag)) {
        const std::string key{fact.key.substr(tag.size())};
        if (key == "timecode")
            source.timecode = fact.value;
        if (source.notes.size() < mostNotes)
            note = &source.notes.insert_or_assign(key, fact.value).first->second;
    } else if (note != nullptr) {
        note->append("\n").append(line);
    } else if (fact.key == "start_time") {
        source.start = toSeconds(fact.value);
    } else if (fact.key == "duration") {
        source.duration = toSeconds(fact.value);
    }
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
    const auto own = at(index).start;
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
    const Stream &own = at(index);
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

std::vector<std::string> probeArgumentsWithPackets(const std::string &path, double begin)
{
    std::vector<std::string> arguments = probeArguments(path);
    const std::string packets = "packet=stream_index,pts_time,dts_time,duration_time";
    arguments.insert(arguments.end(), {"-show_entries", packets});
    if (begin > 0.0)
        arguments.insert(arguments.end(), {"-read_intervals", std::to_string(begin) + '%'});
    return arguments;
}

Source parseProbe(std::string_view text)
{
    ProbeReader reader;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        reader.read(line);
    }
    return reader.source;
}

} // namespace tooladapter
