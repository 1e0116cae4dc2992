// SPDX-License-Identifier: MIT

// Half bits of LTC last 190 to 290 microseconds and bits 370 to 590 at any rate: edges at such
// distances are biphase mark code or something much like it. Together with level and clipping that shows
// people what to look for.

#include "ltcreader/diagnosis.h"

#include "ltcreader/edge/edgereader.h"
#include "ltcreader/sound/window.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ltcreader
{
namespace
{

constexpr double binTime = 25e-6;  // [s] of the distances
constexpr double waveTime = 0.004; // [s] that the picture shows: eight bits
constexpr std::size_t waveColumns = 72;
constexpr int waveRows = 7;
constexpr int barLength = 50;
constexpr double silence = 1e-4;      // [full scale] -80 dBFS
constexpr double quiet = 0.001;       // [full scale] -60 dBFS
constexpr double extreme = 0.999;     // of the peak: a sample as high as that stands at it
constexpr double clippedShare = 0.1;  // of all samples; a clean square wave has more, with few values between
constexpr double leastEdges = 1000.0; // [1/s] LTC has at least 1690
constexpr double mostEdges = 6000.0;  // [1/s] LTC has at most 5380
constexpr double biphaseShare = 0.9;

bool isHalfOrWholeBit(double seconds)
{
    return (seconds > 180e-6 && seconds < 300e-6) || (seconds > 360e-6 && seconds < 600e-6);
}

void countEdges(const std::vector<float> &samples, int sampleRate, Diagnosis &diagnosis)
{
    Slicer slicer = slicerFor(Algorithm::Mid, sampleRate);
    std::vector<Edge> edges;
    slicer.process(samples.data(), samples.size(), edges);
    for (std::size_t i = 1; i < edges.size(); ++i) {
        const double seconds = (edges[i].position - edges[i - 1].position) / sampleRate;
        const auto bin = static_cast<std::size_t>(std::max(0.0, seconds / binTime));
        ++diagnosis.distances[std::min(bin, diagnosis.distances.size() - 1)];
        diagnosis.biphase += isHalfOrWholeBit(seconds) ? 1.0 : 0.0;
    }
    diagnosis.biphase /= std::max<double>(1.0, static_cast<double>(edges.size()) - 1.0);
    diagnosis.edges = static_cast<double>(edges.size()) * sampleRate /
                      std::max<double>(1.0, static_cast<double>(samples.size()));
}

std::string number(const char *format, double value)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string picture(const std::vector<float> &wave)
{
    float largest = 0.0F;
    for (const float value : wave)
        largest = std::max(largest, std::abs(value));
    if (largest == 0.0F)
        return {};
    std::vector<std::string> rows(waveRows, std::string(wave.size(), ' '));
    for (std::size_t column = 0; column < wave.size(); ++column) {
        const double height = 0.5 - 0.5 * static_cast<double>(wave[column] / largest);
        const auto row = static_cast<std::size_t>(std::lround(height * (waveRows - 1)));
        rows[row][column] = '*';
    }
    std::string text;
    for (const std::string &row : rows)
        text += "  |" + row + "\n";
    return text;
}

std::string histogram(const Diagnosis &diagnosis)
{
    const int most = *std::max_element(diagnosis.distances.begin(), diagnosis.distances.end());
    std::string text;
    for (std::size_t bin = 0; bin < diagnosis.distances.size() && most > 0; ++bin) {
        const int length = (diagnosis.distances[bin] * barLength + most - 1) / most;
        const double microseconds = static_cast<double>(bin) * binTime * 1e6;
        text +=
            number("  %4.0f us ", microseconds) + std::string(static_cast<std::size_t>(length), '#') + "\n";
    }
    return text;
}

bool looksLikeTimecode(const Diagnosis &diagnosis)
{
    return diagnosis.biphase > biphaseShare && diagnosis.edges > leastEdges && diagnosis.edges < mostEdges;
}

} // namespace

std::vector<Diagnosis> diagnose(SampleSource &source)
{
    Window window(source);
    while (window.readBlock()) {
    }
    std::vector<Diagnosis> all;
    for (int channel = 0; channel < window.channels(); ++channel) {
        const std::vector<float> &samples = window.channel(channel);
        Diagnosis diagnosis;
        const auto size = static_cast<double>(samples.size());
        diagnosis.level = window.level(channel, 0.0, size);
        for (const float sample : samples)
            diagnosis.peak = std::max(diagnosis.peak, std::abs(static_cast<double>(sample)));
        const auto atPeak = std::count_if(samples.begin(), samples.end(), [&diagnosis](float sample) {
            return std::abs(static_cast<double>(sample)) >= extreme * diagnosis.peak;
        });
        diagnosis.clipped = static_cast<double>(atPeak) / std::max(1.0, size);
        countEdges(samples, window.sampleRate(), diagnosis);
        const double step = waveTime * window.sampleRate() / static_cast<double>(waveColumns);
        for (std::size_t column = 0; column < waveColumns; ++column) {
            const auto place = static_cast<std::size_t>(0.5 * size + static_cast<double>(column) * step);
            if (place < samples.size())
                diagnosis.wave.push_back(samples[place]);
        }
        all.push_back(diagnosis);
    }
    return all;
}

std::string reasonFor(Doubt doubt, const Diagnosis &diagnosis)
{
    switch (doubt) {
    case Doubt::None:
        return {};
    case Doubt::Frozen:
        return "frozen: all frames carry the same label";
    case Doubt::Held:
        return "held: each label stays for several frames";
    case Doubt::CountingDown:
        return "counting down: the recording plays backwards";
    case Doubt::Jump:
        return "a jump: no line of labels is proven at the first sample";
    case Doubt::TwoTimecodes:
        return "two timecodes that contradict each other";
    case Doubt::IllegalLabels:
        return "labels that no clock shows, such as second 61";
    case Doubt::FalseFlag:
        return "the drop-frame flag contradicts the labels or the speed";
    case Doubt::Speed:
        return "too fast or too slow for the frame rate of its labels";
    case Doubt::RateClass:
        return "the frame rate and its 1000/1001 neighbour cannot be distinguished; set it with -f";
    case Doubt::TooNoisy:
        if (!looksLikeTimecode(diagnosis))
            return "too noisy: something like timecode, but its label is not proven";
        break;
    case Doubt::NoTimecode:
        break;
    }
    if (diagnosis.peak < silence)
        return "silence";
    if (looksLikeTimecode(diagnosis))
        return "a signal like timecode, but without sync words that count up";
    if (diagnosis.level < quiet)
        return "very low level, nothing like timecode in it";
    if (diagnosis.edges > mostEdges)
        return "noise";
    if (diagnosis.clipped > clippedShare)
        return "clipped sound, nothing like timecode in it";
    return "programme sound only";
}

std::string toText(const Diagnosis &diagnosis, int channel, Doubt doubt)
{
    constexpr double finite = 1e-9; // [full scale] keeps logarithms finite
    std::string text = "Channel " + std::to_string(channel + 1) + ": ";
    text += number("level %.1f dBFS", 20.0 * std::log10(diagnosis.level + finite));
    text += number(", peak %.1f dBFS", 20.0 * std::log10(diagnosis.peak + finite));
    text += number(", %.0f edges per second", diagnosis.edges);
    text += number(", %.0f %% of them at distances of timecode\n", 100.0 * diagnosis.biphase);
    if (doubt != Doubt::None)
        text += "No timecode: " + reasonFor(doubt, diagnosis) + "\n";
    const std::string wave = picture(diagnosis.wave);
    if (!wave.empty())
        text += "Waveform, 4 ms from the middle:\n" + wave;
    const std::string lengths = histogram(diagnosis);
    if (!lengths.empty())
        text += "Time between edges:\n" + lengths;
    return text;
}

} // namespace ltcreader
