// SPDX-License-Identifier: MIT
#include "ltcreader/sound/window.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double blockTime = 0.25;    // [s]
constexpr double windowTime = 3.25;   // [s] what is extracted from media files, and a little
constexpr double keptTime = 1.0;      // [s] when the window moves on
constexpr double searchedTime = 60.0; // [s] a recording whose timecode starts later is none
constexpr std::size_t windowValues = std::size_t{6} * 1024 * 1024; // of all channels together: 24 MiB
constexpr float loudest = 1e4F; // [full scale] beyond it a float file holds garbage

} // namespace

Window::Window(SampleSource &source)
    : source(source),
      block(static_cast<std::size_t>(std::max(1.0, blockTime * source.sampleRate()))),
      capacity(std::min(static_cast<std::size_t>(windowTime * source.sampleRate()) + 1,
                        windowValues / static_cast<std::size_t>(source.channels()))),
      held(static_cast<std::size_t>(source.channels()))
{
    block = std::min(block, capacity);
}

bool Window::readBlock()
{
    const std::size_t wanted = std::min(block, capacity - size());
    interleaved.resize(wanted * held.size());
    const std::size_t given = wanted == 0 ? 0 : source.read(interleaved.data(), wanted);
    for (std::size_t channel = 0; channel < held.size(); ++channel) {
        std::vector<float> &samples = held[channel];
        for (std::size_t i = 0; i < given; ++i) {
            const float sample = interleaved[i * held.size() + channel];
            samples.push_back(std::abs(sample) <= loudest ? sample : 0.0F); // not so for NaN either
        }
    }
    return given > 0;
}

bool Window::moveOn()
{
    const std::size_t kept = std::min(static_cast<std::size_t>(keptTime * sampleRate()), capacity / 2);
    if (size() < capacity || static_cast<double>(passed) > searchedTime * sampleRate())
        return false;
    const std::size_t dropped = size() - kept;
    for (std::vector<float> &samples : held)
        samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(dropped));
    passed += dropped;
    return readBlock();
}

std::size_t Window::offset() const
{
    return passed;
}

int Window::channels() const
{
    return static_cast<int>(held.size());
}

int Window::sampleRate() const
{
    return source.sampleRate();
}

std::size_t Window::size() const
{
    return held.front().size();
}

const std::vector<float> &Window::channel(int channel) const
{
    return held[static_cast<std::size_t>(channel)];
}

double Window::level(int channel, double from, double to) const
{
    const std::vector<float> &samples = held[static_cast<std::size_t>(channel)];
    const auto begin = static_cast<std::size_t>(std::max(0.0, from));
    const auto end = std::min(samples.size(), static_cast<std::size_t>(std::max(0.0, to)));
    double sum = 0.0;
    double squares = 0.0;
    for (std::size_t i = begin; i < end; ++i) {
        sum += double{samples[i]};
        squares += double{samples[i]} * double{samples[i]};
    }
    const auto n = static_cast<double>(std::max<std::size_t>(1, end > begin ? end - begin : 0));
    return std::sqrt(std::max(0.0, squares / n - sum / n * (sum / n)));
}

} // namespace ltcreader
