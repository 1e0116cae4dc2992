// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace ltcreader
{

/// Sound that is read once, from its first sample on. Full scale is -1 to 1.
class SampleSource
{
public:
    SampleSource() = default;
    SampleSource(const SampleSource &) = delete;
    SampleSource &operator=(const SampleSource &) = delete;
    virtual ~SampleSource() = default;

    /// Number of channels, 1 or more.
    virtual int channels() const = 0;

    /// [Hz], above 0.
    virtual int sampleRate() const = 0;

    /// Fills \a interleaved with up to \a frames samples of every channel and returns how many; 0 at the end.
    virtual std::size_t read(float *interleaved, std::size_t frames) = 0;
};

/// Sound held in memory.
class MemorySource : public SampleSource
{
public:
    /// \a interleaved holds whole sets of \a channels (1 or more) samples at \a sampleRate [Hz].
    MemorySource(std::vector<float> interleaved, int channels, int sampleRate);

    int channels() const override;
    int sampleRate() const override;
    std::size_t read(float *interleaved, std::size_t frames) override;

private:
    std::vector<float> samples; ///< interleaved
    std::size_t position = 0;   ///< index in samples of the next value to give
    int channelCount;
    int rate; ///< [Hz]
};

} // namespace ltcreader
