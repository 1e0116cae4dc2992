// SPDX-License-Identifier: MIT
#include "tooladapter/writtenfile.h"

#include "tooladapter/refusal.h"

#include <algorithm>
#include <cstdio>

namespace tooladapter
{
namespace
{

/// Headers round, and coders pad the last block: so much may be missing from a complete file.
constexpr double toleratedSeconds = 0.1; // [s]

double lengthOf(const Source &source, int stream)
{
    const double own = source.streams[static_cast<std::size_t>(stream)].duration;
    return own > 0.0 ? own : source.duration;
}

std::string secondsText(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f s", seconds);
    return text;
}

void checkLength(const std::string &what, double written, double expected, double tolerated)
{
    if (expected > 0.0 && written < expected - tolerated)
        throw Refusal("the written " + what + " ends after " + secondsText(written) +
                      ", the source's after " + secondsText(expected));
}

} // namespace

void checkWrittenFile(const Export &job, const Source &source, const Source &written)
{
    if (job.pictureStream >= 0) {
        const int picture = written.firstPicture();
        if (picture < 0)
            throw Refusal("the written file has no picture");
        const FrameRate rate = source.streams[static_cast<std::size_t>(job.pictureStream)].averageRate;
        const double twoFrames = rate.isValid() ? 2.0 / rate.perSecond() : 0.0;
        checkLength("picture", lengthOf(written, picture), lengthOf(source, job.pictureStream),
                    std::max(toleratedSeconds, twoFrames));
    }
    const std::vector<int> audio = written.audioStreams();
    if (audio.size() != job.audio.size())
        throw Refusal("the written file has " + std::to_string(audio.size()) + " audio streams instead of " +
                      std::to_string(job.audio.size()));
    for (std::size_t i = 0; i < audio.size(); ++i) {
        const Stream &stream = written.streams[static_cast<std::size_t>(audio[i])];
        if (stream.channels != job.audio[i].channels)
            throw Refusal("a written audio stream has " + std::to_string(stream.channels) +
                          " channels instead of " + std::to_string(job.audio[i].channels));
        checkLength("sound", lengthOf(written, audio[i]), lengthOf(source, job.audio[i].stream),
                    toleratedSeconds);
    }
    if (!job.timecode.empty() && written.startTimecode() != job.timecode)
        throw Refusal("the written file starts at \"" + written.startTimecode() + "\" instead of " +
                      job.timecode);
}

} // namespace tooladapter
