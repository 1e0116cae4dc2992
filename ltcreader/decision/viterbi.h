// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frame/codeword.h"

#include <array>
#include <cstdint>

namespace ltcreader
{

/// 1 or -1: whether bits of \a value, \a width of them, leave the polarity as it was.
float polarityAfter(int value, int width);

/// How well \a halves, two for each bit of a number of \a width bits, resemble \a value that begins high: the
/// sum of their products with the levels of its half bits.
float correlation(const float *halves, int value, int width);

/// Finds the bits that fit a frame's half bits best, polarity and all: A. Viterbi's algorithm on a trellis of
/// two states.
///
/// In biphase mark code the polarity at the start of a bit follows from the bits before: a zero changes it, a
/// one leaves it. The best bits up to some place are therefore known for both polarities there, and the next
/// bit is decided for each of them.
class Viterbi
{
public:
    /// Begins high when \a anchored, else with either polarity.
    explicit Viterbi(bool anchored);

    /// Continues over bit number \a bit, which may be 0 or 1; \a halves points to its two halves.
    void free(int bit, const float *halves);

    /// Continues over a number whose bits lie at \a part and which is one of the set bits of \a allowed.
    void number(BitField part, const float *halves, std::uint32_t allowed);

    /// Continues over something that is known, changes no polarity and fits with \a fit.
    void known(float fit);

    /// The best fit: of paths that end high when \a anchored, else of all.
    float fit(bool anchored) const;

    /// The bits of the best path.
    FrameBits bits(bool anchored) const;

private:
    struct Path {
        float fit = 0.0F;
        FrameBits bits = 0;
    };
    std::array<Path, 2> paths; ///< of those that are high now, and low now
};

} // namespace ltcreader
