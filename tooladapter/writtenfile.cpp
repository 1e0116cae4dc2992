// SPDX-License-Identifier: MIT
#include "tooladapter/writtenfile.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tooladapter
{
namespace
{

/// Headers round, and coders pad the last block: so much may be missing from a complete file. Ends are
/// compared rather than lengths, since a picture cannot be copied before its first whole frame.
constexpr double toleratedSeconds = 0.1; // [s]

const Stream &streamAt(const Source &file, int index)
{
    return file.streams[static_cast<std::size_t>(index)];
}

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
    const FrameRate rate = streamAt(source, job.pictureStream).averageRate;
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
        const int channels = streamAt(written, streams[i]).channels;
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

} // namespace

std::string faultIn(const Source &written, const Export &job, const Source &source)
{
    std::string fault = faultInPicture(written, job, source);
    if (fault.empty())
        fault = faultInSound(written, job, source);
    return fault.empty() ? faultInTimecode(written, job) : fault;
}

} // namespace tooladapter
