// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/codeword.h"

#include <cstddef>
#include <vector>

namespace ltcreader
{

constexpr int halvesPerFrame = 2 * bitsPerFrame;
constexpr int dataHalves = 2 * dataBits;

/// Where in the half bits of a frame, which begin at \a frame, those of bit \a bit lie.
inline const float *halvesOf(const float *frame, int bit)
{
    return frame + std::ptrdiff_t{2} * bit;
}

/// The half bits of a recording, cut into frames. Frames at both ends may be incomplete; what is missing is
/// 0.
struct FrameGrid {
    int firstHalf = 0;      ///< index among the half bits of the first half of frame 0, from -159 to 0
    int frames = 0;         ///< complete and incomplete ones
    double score = 0.0;     ///< of the sync words, in standard deviations of what chance brings
    double sidelobes = 0.0; ///< RMS of the scores of all other places
    bool isDecisionDirected = false; ///< a decision on the half bits has changed them, maybe towards itself
    std::vector<float> halves;       ///< halvesPerFrame for each frame
    std::vector<float> syncs; ///< of each frame: how much its end resembles a sync word; sign is its polarity

    /// Where among the half bits of a frame's length the first sync word begins.
    std::size_t syncPlace() const
    {
        return static_cast<std::size_t>((firstHalf + dataHalves + halvesPerFrame) % halvesPerFrame);
    }

    const float *frame(int number) const { return halves.data() + std::ptrdiff_t{number} * halvesPerFrame; }
};

/// How much \a halves, as many as a sync word has, resemble one; the sign is its polarity.
float syncCorrelation(const float *halves);

/// Cuts \a values into frames, one of whose sync words begins at \a syncPlace, below halvesPerFrame.
FrameGrid cutIntoFrames(const std::vector<float> &values, std::size_t syncPlace);

/// Finds where frames begin among \a halfBits.
FrameGrid findFrames(const std::vector<float> &halfBits);

/// Sets the syncs of \a grid from its half bits.
void measureSyncs(FrameGrid &grid);

} // namespace ltcreader
