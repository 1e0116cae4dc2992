// SPDX-License-Identifier: MIT

// The recording is read in blocks. Every channel is sliced as it comes in; as soon as one shows an unbroken
// row of frames in which the frame number has returned to its start, reading ends: a clean file costs a
// second of sound. When the window is full and nothing was beyond doubt, everything else is tried on what was
// kept. Where that finds nothing either, or only noise, the window moves on.

#include "ltcreader/decoder/decoder.h"

#include "ltcreader/decoder/channelreader.h"
#include "ltcreader/sound/window.h"

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

/// Keeps the louder answer, or, where there is none, the doubt that says most.
void keepBetter(ChannelOutcome &best, const ChannelOutcome &found)
{
    const auto rank = [](const ChannelOutcome &outcome) {
        return outcome.doubt == Doubt::None         ? 3
               : outcome.doubt == Doubt::NoTimecode ? 0
               : outcome.likeliest                  ? 2
                                                    : 1;
    };
    const bool louder = rank(found) == rank(best) && found.likeliest && best.likeliest &&
                        found.likeliest->level > best.likeliest->level;
    if (rank(found) > rank(best) || louder)
        best = found;
}

std::vector<ChannelReader> readersFor(const Window &window, const Settings &settings)
{
    std::optional<timecode::Rate> wanted;
    if (settings.frameRate >= 0.0)
        wanted = rateClass(settings.frameRate);
    std::vector<ChannelReader> readers;
    for (int channel = 0; channel < window.channels(); ++channel) {
        if (settings.channel < 0 || settings.channel == channel)
            readers.emplace_back(window, channel, settings.algorithm, wanted);
    }
    return readers;
}

ChannelOutcome readWindow(Window &window, const Settings &settings)
{
    std::vector<ChannelReader> readers = readersFor(window, settings);
    std::optional<Finding> sure;
    std::size_t from = 0;
    while (!sure && (from < window.size() || window.readBlock())) {
        for (ChannelReader &reader : readers)
            keepBetter(sure, reader.follow(from));
        from = window.size();
    }
    if (sure)
        return {sure, Doubt::None};
    ChannelOutcome best;
    for (const ChannelReader &reader : readers)
        keepBetter(best, reader.readThoroughly());
    return best;
}

} // namespace

std::optional<timecode::Rate> rateClass(double frameRate)
{
    // Users write the NTSC rates with two or three decimals.
    constexpr double rounding = 0.006;
    for (const timecode::Rate &rate : timecode::rates) {
        if (std::abs(rate.framesPerSecond() - frameRate) < rounding)
            return rate;
    }
    return std::nullopt;
}

Outcome examine(SampleSource &source, const Settings &settings)
{
    Window window(source);
    Outcome outcome;
    do {
        const ChannelOutcome found = readWindow(window, settings);
        if (found.doubt == Doubt::NoTimecode)
            continue;
        outcome.doubt = found.doubt;
        outcome.likeliest.reset();
        if (found.likeliest && isWhole(*found.likeliest)) {
            outcome.likeliest =
                toReading(*found.likeliest, static_cast<double>(window.offset()), window.sampleRate());
        } else if (outcome.doubt == Doubt::None) {
            outcome.doubt = Doubt::TooNoisy;
        }
        // What runs later says nothing about the first sample if labels before it did something else.
        if (outcome.doubt == Doubt::None || isOfLabels(outcome.doubt))
            return outcome;
    } while (window.moveOn());
    return outcome;
}

std::optional<Reading> readTimecode(SampleSource &source, const Settings &settings)
{
    const Outcome outcome = examine(source, settings);
    return outcome.doubt == Doubt::None ? outcome.likeliest : std::nullopt;
}

} // namespace ltcreader
