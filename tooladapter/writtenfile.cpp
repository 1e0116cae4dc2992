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

/// When \a stream ends, counted from the beginning of the file [s]; 0 where the file does not tell. Compared
/// rather than lengths, since a picture cannot be copied before its first whole frame.
double endOf(const Source &file, int stream)
{
    const Stream &own = file.streams[static_cast<std::size_t>(stream)];
    return own.duration > 0.0 ? own.start - file.start + own.duration : file.duration;
}

std::string secondsText(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f s", seconds);
    return text;
}

void checkEnd(const std::string &what, double written, double expected, double tolerated)
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
        checkEnd("picture", endOf(written, picture), endOf(source, job.pictureStream),
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
        checkEnd("sound", endOf(written, audio[i]), endOf(source, job.audio[i].stream), toleratedSeconds);
    }
    if (!job.timecode.empty() && written.startTimecode() != job.timecode)
        throw Refusal("the written file starts at \"" + written.startTimecode() + "\" instead of " +
                      job.timecode);
}

} // namespace tooladapter
