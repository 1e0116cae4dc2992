// SPDX-License-Identifier: MIT

// The recording is read in blocks. Every channel is sliced as it comes in; as soon as one shows an unbroken
// row of frames in which the frame number has returned to its start, reading ends: a clean file costs a
// second of sound. When the window is full and nothing was beyond doubt, the other ways of slicing are tried
// on what was kept.

#include "ltcreader/decoder.h"

#include "ltcreader/edgereader.h"
#include "ltcreader/framechain.h"
#include "ltcreader/window.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr int sureFrames = 10;        // unbroken, with a return of the frame number
constexpr int believableFrames = 3;   // at the end of the recording
constexpr double sureDeviation = 0.1; // [bits] edges this close to their places leave no doubt about bits

struct Candidate {
    FrameChain chain;
    int channel = 0;
    Algorithm algorithm = Algorithm::Mid;
    double level = 0.0; // [full scale] RMS
};

bool isSure(const FrameChain &chain)
{
    return chain.frames >= sureFrames && chain.wraps > 0 && chain.strangers == 0 &&
           chain.deviation < sureDeviation;
}

Reading toReading(const Candidate &found, int sampleRate)
{
    const FrameChain &chain = found.chain;
    Reading reading;
    reading.start = labelAt(std::llround(chain.startCount), chain.rate);
    reading.dropFrame = chain.rate.dropFrame;
    reading.ntsc = chain.rate.ntsc;
    reading.baseRate = chain.rate.base;
    reading.channel = found.channel;
    reading.samplesSinceMidnight = samplesAt(chain.startCount, chain.rate, sampleRate);
    reading.confidence = 1.0;
    reading.measuredRate = sampleRate / chain.frameLength;
    reading.rateError = 1e6 * (reading.measuredRate / chain.rate.framesPerSecond() - 1.0);
    reading.level = 20.0 * std::log10(std::max(found.level, 1e-9));
    reading.phase = chain.startCount - std::floor(chain.startCount);
    reading.framesUsed = chain.frames;
    reading.userBits = userBitsOf(chain.bits);
    reading.algorithm = found.algorithm;
    reading.inverted = chain.inverted;
    return reading;
}

/// Looks at all channels of one window in every way that the settings allow.
class WindowReader
{
public:
    WindowReader(const Window &window, const Settings &settings) : window(window), settings(settings)
    {
        if (settings.frameRate >= 0.0)
            wanted = rateClass(settings.frameRate);
        const Algorithm first =
            settings.algorithm == Algorithm::Automatic ? Algorithm::Mid : settings.algorithm;
        for (int channel = 0; channel < window.channels(); ++channel) {
            if (settings.channel < 0 || settings.channel == channel) {
                channels.push_back({channel, EdgeReader(first, window.sampleRate())});
            }
        }
    }

    /// Takes in what the window holds from sample \a from on. True when the answer is beyond doubt.
    bool follow(std::size_t from)
    {
        candidates.clear();
        for (Channel &channel : channels) {
            const std::vector<float> &samples = window.channel(channel.number);
            channel.edges.process(samples.data() + from, samples.size() - from);
            consider(channel.edges.frames(), channel.number,
                     settings.algorithm == Algorithm::Automatic ? Algorithm::Mid : settings.algorithm);
        }
        return std::any_of(candidates.begin(), candidates.end(),
                           [](const Candidate &candidate) { return isSure(candidate.chain); });
    }

    /// Tries the ways of slicing that were not tried yet on the whole window.
    void tryAllSlicers()
    {
        if (settings.algorithm != Algorithm::Automatic)
            return;
        for (const Algorithm algorithm : {Algorithm::Slope, Algorithm::High, Algorithm::Low}) {
            for (const Channel &channel : channels) {
                const std::vector<float> &samples = window.channel(channel.number);
                EdgeReader edges(algorithm, window.sampleRate());
                edges.process(samples.data(), samples.size());
                consider(edges.frames(), channel.number, algorithm);
            }
        }
    }

    std::optional<Reading> best() const
    {
        const auto found = std::max_element(candidates.begin(), candidates.end(),
                                            [](const Candidate &a, const Candidate &b) {
                                                return std::pair(isSure(a.chain), a.chain.frames * a.level) <
                                                       std::pair(isSure(b.chain), b.chain.frames * b.level);
                                            });
        if (found == candidates.end())
            return std::nullopt;
        return toReading(*found, window.sampleRate());
    }

private:
    struct Channel {
        int number;
        EdgeReader edges;
    };

    void consider(const std::vector<Frame> &frames, int channel, Algorithm algorithm)
    {
        const auto chain = findChain(frames, window.sampleRate(), wanted);
        if (!chain || chain->frames < believableFrames || chain->strangers > 0)
            return;
        candidates.push_back({*chain, channel, algorithm, window.level(channel, chain->first, chain->last)});
    }

    const Window &window;
    const Settings &settings;
    std::optional<FrameRate> wanted;
    std::vector<Channel> channels;
    std::vector<Candidate> candidates;
};

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
    WindowReader reader(window, settings);
    std::size_t from = 0;
    while (window.readBlock()) {
        if (reader.follow(from))
            return reader.best();
        from = window.size();
    }
    reader.tryAllSlicers();
    return reader.best();
}

} // namespace ltcreader
