// SPDX-License-Identifier: MIT
#include "tooladapter/verify/writtenfile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace tooladapter
{
namespace
{

/// Headers round, and coders pad the last block: so much may be missing from a complete file. Ends are
/// compared rather than lengths, since a picture cannot be copied before its first whole frame.
constexpr double toleratedSeconds = 0.1; // [s]

std::string secondsText(double seconds)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f s", seconds);
    return text.data();
}

std::string faultInEnd(const std::string &what, double written, double expected, double tolerated)
{
    if (expected <= 0.0 || written >= expected - tolerated)
        return {};
    return "the written " + what + " ends after " + secondsText(written) + ", the source's after " +
           secondsText(expected);
}

std::string faultInPicture(const Source &written, const Export &job, const Source &source)
{
    if (job.pictureStream < 0)
        return {};
    const int picture = written.firstPicture();
    if (picture < 0)
        return "the written file has no picture";
    const FrameRate rate = source.at(job.pictureStream).averageRate;
    const double twoFrames = rate.isValid() ? 2.0 / rate.perSecond() : 0.0;
    return faultInEnd("picture", written.endOf(picture), source.endOf(job.pictureStream),
                      std::max(toleratedSeconds, twoFrames));
}

std::string faultInSound(const Source &written, const Export &job, const Source &source)
{
    const std::vector<int> streams = written.audioStreams();
    if (streams.size() != job.audio.size())
        return "the written file has " + std::to_string(streams.size()) + " audio streams instead of " +
               std::to_string(job.audio.size());
    std::string fault;
    for (std::size_t i = 0; i < streams.size() && fault.empty(); ++i) {
        const int channels = written.at(streams[i]).channels;
        if (channels != job.audio[i].channels) {
            return "a written audio stream has " + std::to_string(channels) + " channels instead of " +
                   std::to_string(job.audio[i].channels);
        }
        fault = faultInEnd("sound", written.endOf(streams[i]), source.endOf(job.audio[i].stream),
                           toleratedSeconds);
    }
    return fault;
}

std::string faultInTimecode(const Source &written, const Export &job)
{
    if (job.timecode.empty() || written.startTimecode() == job.timecode)
        return {};
    return "the written file starts at \"" + written.startTimecode() + "\" instead of " + job.timecode;
}

std::string faultInTimeReference(const Source &written, const Export &job)
{
    if (job.timeReference.empty())
        return {};
    const auto note = written.notes.find("time_reference");
    const std::string found = note == written.notes.end() ? std::string() : note->second;
    if (!found.empty() &&
        std::strtoll(found.c_str(), nullptr, 10) == std::strtoll(job.timeReference.c_str(), nullptr, 10))
        return {};
    return "the written file starts at the sample \"" + found + "\" instead of " + job.timeReference;
}

/// What shows whether a file was cut off: its picture, or without one its sound.
struct Tail {
    Stream::Kind kind = Stream::Kind::Audio;
    double end = 0.0;       ///< in the source [s]; 0 = not known
    double tolerated = 0.5; ///< so much may be missing [s]: seen are packets, which coders reorder
};

Tail tailOf(const Export &job, const Source &source)
{
    Tail tail;
    if (job.pictureStream >= 0) {
        const FrameRate rate = source.at(job.pictureStream).averageRate;
        tail.kind = Stream::Kind::Picture;
        tail.end = source.endOf(job.pictureStream);
        tail.tolerated = std::max(tail.tolerated, rate.isValid() ? 2.0 / rate.perSecond() : 0.0);
    }
    for (const WrittenAudio &audio : job.audio) {
        if (job.pictureStream < 0)
            tail.end = std::max(tail.end, source.endOf(audio.stream));
    }
    return tail;
}

/// A packet of a report, as far as it is read.
struct Packet {
    std::size_t stream = 0;
    std::optional<double> shown;   ///< when it is shown [s]
    std::optional<double> decoded; ///< when it is decoded [s]
    double duration = 0.0;         ///< [s]
};

std::optional<double> timeIn(const std::string &text)
{
    char *end = nullptr;
    const double seconds = std::strtod(text.c_str(), &end);
    return end != text.c_str() ? std::optional(seconds) : std::nullopt; // "N/A"
}

std::vector<Packet> packetsIn(std::string_view report)
{
    std::vector<Packet> packets;
    while (!report.empty()) {
        const std::string_view line = report.substr(0, report.find('\n'));
        report.remove_prefix(std::min(report.size(), line.size() + 1));
        const std::size_t equals = std::min(line.find('='), line.size());
        const std::string_view key = line.substr(0, equals);
        const std::string value{line.substr(std::min(equals + 1, line.size()))};
        if (line == "[STREAM]") // behind the packets
            break;
        if (line == "[PACKET]")
            packets.emplace_back();
        else if (packets.empty())
            continue;
        else if (key == "stream_index")
            packets.back().stream = std::strtoul(value.c_str(), nullptr, 10);
        else if (key == "pts_time")
            packets.back().shown = timeIn(value);
        else if (key == "dts_time")
            packets.back().decoded = timeIn(value);
        else if (key == "duration_time")
            packets.back().duration = timeIn(value).value_or(0.0);
    }
    return packets;
}

/// Headers may promise more than there is: what can be read at the end has the last word.
std::string faultInTail(std::string_view report, const Source &written, const Export &job,
                        const Source &source)
{
    const Tail tail = tailOf(job, source);
    double seen = 0.0; // [s]
    for (const Packet &packet : packetsIn(report)) {
        if (packet.stream >= written.streams.size() || written.streams[packet.stream].kind != tail.kind)
            continue;
        // A coded picture without times has lost its index; a copied one may never have had them.
        const auto begin = packet.shown || !job.copiesPicture ? packet.shown : packet.decoded;
        if (begin)
            seen = std::max(seen, *begin - written.start + packet.duration);
    }
    const std::string what = tail.kind == Stream::Kind::Picture ? "picture" : "sound";
    return faultInEnd(what, seen, tail.end, tail.tolerated);
}

} // namespace

std::string faultIn(const Source &written, const Export &job, const Source &source)
{
    for (const std::string &fault : {faultInPicture(written, job, source), faultInSound(written, job, source),
                                     faultInTimecode(written, job), faultInTimeReference(written, job)}) {
        if (!fault.empty())
            return fault;
    }
    return {};
}

std::vector<std::string> checkArguments(const Export &job, const Source &source)
{
    constexpr double length = 1.0; // [s] to be read at the end
    std::vector<std::string> arguments =
        probeArguments(job.path, ":packet=stream_index,pts_time,dts_time,duration_time");
    const Tail tail = tailOf(job, source);
    const double begin = tail.end - std::max(length, 2 * tail.tolerated);
    if (begin > 0.0)
        arguments.insert(arguments.end(), {"-read_intervals", std::to_string(begin) + '%'});
    return arguments;
}

std::string faultInReport(std::string_view report, const Export &job, const Source &source)
{
    const Source written = parseProbe(report);
    const std::string fault = faultIn(written, job, source);
    return fault.empty() ? faultInTail(report, written, job, source) : fault;
}

} // namespace tooladapter
