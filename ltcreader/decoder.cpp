// SPDX-License-Identifier: MIT

// The recording is read in blocks. Every channel is sliced as it comes in; as soon as one shows an unbroken
// row of frames in which the frame number has returned to its start, reading ends: a clean file costs a
// second of sound. When the window is full and nothing was beyond doubt, everything else is tried on what was
// kept. Where that finds nothing either, the window moves on.

#include "ltcreader/decoder.h"

#include "ltcreader/channelreader.h"
#include "ltcreader/window.h"

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace ltcreader
{
namespace
{

/// Keeps the louder one: crosstalk is weaker than what it comes from.
void keepBetter(std::optional<Finding> &best, const std::optional<Finding> &found)
{
    if (found && (!best || found->level > best->level))
        best = found;
}

std::vector<ChannelReader> readersFor(const Window &window, const Settings &settings)
{
    std::optional<FrameRate> wanted;
    if (settings.frameRate >= 0.0)
        wanted = rateClass(settings.frameRate);
    std::vector<ChannelReader> readers;
    for (int channel = 0; channel < window.channels(); ++channel) {
        if (settings.channel < 0 || settings.channel == channel)
            readers.emplace_back(window, channel, settings.algorithm, wanted);
    }
    return readers;
}

std::optional<Finding> readWindow(Window &window, const Settings &settings)
{
    std::vector<ChannelReader> readers = readersFor(window, settings);
    std::optional<Finding> best;
    std::size_t from = 0;
    while (!best && (from < window.size() || window.readBlock())) {
        for (ChannelReader &reader : readers)
            keepBetter(best, reader.follow(from));
        from = window.size();
    }
    if (best)
        return best;
    for (const ChannelReader &reader : readers)
        keepBetter(best, reader.readThoroughly());
    return best;
}

} // namespace

std::optional<FrameRate> rateClass(double frameRate)
{
    // Users write the NTSC rates with two or three decimals.
    constexpr double rounding = 0.006;
    constexpr std::array<FrameRate, 5> classes{FrameRate{24, true, false},
                                               {24, false, false},
                                               {25, false, false},
                                               {30, true, false},
                                               {30, false, false}};
    for (const FrameRate &rate : classes) {
        if (std::abs(rate.framesPerSecond() - frameRate) < rounding)
            return rate;
    }
    return std::nullopt;
}

std::optional<Reading> readTimecode(SampleSource &source, const Settings &settings)
{
    Window window(source);
    do {
        const auto found = readWindow(window, settings);
        if (found)
            return toReading(*found, static_cast<double>(window.offset()), window.sampleRate());
    } while (window.moveOn());
    return std::nullopt;
}

} // namespace ltcreader
