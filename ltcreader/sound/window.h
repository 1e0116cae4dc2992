// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sound/samplesource.h"

#include <cstddef>
#include <vector>

namespace ltcreader
{

/// The part of a recording that is looked at, channel by channel, of bounded size.
class Window
{
public:
    explicit Window(SampleSource &source);

    /// Reads a further quarter of a second. False when the window is full or the recording has ended.
    bool readBlock();

    /// Lets go of all but the newest second, to go on reading. False when the recording has ended or enough
    /// of it was looked at.
    bool moveOn();

    /// [samples] between the recording's first sample and the window's.
    std::size_t offset() const;

    int channels() const;
    int sampleRate() const;   ///< [Hz]
    std::size_t size() const; ///< [samples] held

    /// The samples of \a channel (from 0), size() of them, without values that are no numbers.
    const std::vector<float> &channel(int channel) const;

    /// RMS [full scale] of \a channel between \a from and \a to [samples], without its mean.
    double level(int channel, double from, double to) const;

private:
    SampleSource &source;
    std::size_t block;      ///< [samples] of one read
    std::size_t capacity;   ///< [samples] that the window may hold
    std::size_t passed = 0; ///< [samples] let go
    std::vector<std::vector<float>> held;
    std::vector<float> interleaved;
};

} // namespace ltcreader
