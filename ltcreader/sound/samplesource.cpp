// SPDX-License-Identifier: MIT
#include "ltcreader/sound/samplesource.h"

#include <algorithm>
#include <utility>

namespace ltcreader
{

MemorySource::MemorySource(std::vector<float> interleaved, int channels, int sampleRate)
    : samples(std::move(interleaved)), channelCount(channels), rate(sampleRate)
{
}

int MemorySource::channels() const
{
    return channelCount;
}

int MemorySource::sampleRate() const
{
    return rate;
}

std::size_t MemorySource::read(float *interleaved, std::size_t frames)
{
    const auto width = static_cast<std::size_t>(channelCount);
    const std::size_t given = std::min(frames, (samples.size() - position) / width);
    std::copy_n(samples.data() + position, given * width, interleaved);
    position += given * width;
    return given;
}

} // namespace ltcreader
