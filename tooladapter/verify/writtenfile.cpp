// SPDX-License-Identifier: MIT
#include "tooladapter/verify/writtenfile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

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

/// Headers may promise more than there is: what can be read at the end has the last word.
std::string faultInTail(const Source &written, const Export &job, const Source &source)
{
    const Tail tail = tailOf(job, source);
    double seen = 0.0; // [s]
    for (const Stream &stream : written.streams) {
        if (stream.kind != tail.kind)
            continue;
        // A coded picture without times has lost its index; a copied one may never have had them.
        const bool isUntimed = job.copiesPicture && stream.shownUntil <= 0.0;
        seen = std::max(seen, (isUntimed ? stream.decodedUntil : stream.shownUntil) - written.start);
    }
    const std::string what = tail.kind == Stream::Kind::Picture ? "picture" : "sound";
    return faultInEnd(what, seen, tail.end, tail.tolerated);
}

} // namespace

std::vector<std::string> checkArguments(const Export &job, const Source &source)
{
    constexpr double length = 1.0; // [s] to be read at the end
    const Tail tail = tailOf(job, source);
    return probeArgumentsWithPackets(job.path, tail.end - std::max(length, 2 * tail.tolerated));
}

std::string faultIn(const Source &written, const Export &job, const Source &source)
{
    for (const std::string &fault : {faultInPicture(written, job, source), faultInSound(written, job, source),
                                     faultInTimecode(written, job), faultInTimeReference(written, job),
                                     faultInTail(written, job, source)}) {
        if (!fault.empty())
            return fault;
    }
    return {};
}

} // namespace tooladapter
