// SPDX-License-Identifier: MIT
#include "ltcreader/decision/viterbi.h"

#include "ltcreader/decision/likelihood.h"

#include <bit>
#include <cstddef>

namespace ltcreader
{

float polarityAfter(int value, int width)
{
    const int zeros = width - std::popcount(static_cast<unsigned>(value));
    return zeros % 2 == 0 ? 1.0F : -1.0F;
}

float correlation(const float *halves, int value, int width)
{
    float level = 1.0F;
    float sum = 0.0F;
    for (int bit = 0; bit < width; ++bit, halves += 2) {
        const bool one = (value >> bit & 1) != 0;
        sum += level * (one ? halves[0] - halves[1] : halves[0] + halves[1]);
        level = one ? level : -level;
    }
    return sum;
}

Viterbi::Viterbi(bool anchored)
{
    if (anchored)
        paths[1].fit = impossibleFit;
}

void Viterbi::free(int bit, const float *halves)
{
    const float one = halves[0] - halves[1];
    const float zero = halves[0] + halves[1];
    const std::array<Path, 2> before = paths;
    for (std::size_t state = 0; state < 2; ++state) {
        const float sign = state == 0 ? 1.0F : -1.0F;
        const float byOne = before[state].fit + sign * one;
        const float byZero = before[1 - state].fit - sign * zero;
        paths[state] = byOne > byZero ? Path{byOne, before[state].bits | FrameBits{1} << bit}
                                      : Path{byZero, before[1 - state].bits};
    }
}

void Viterbi::number(BitField part, const float *halves, std::uint32_t allowed)
{
    const std::array<Path, 2> before = paths;
    paths = {Path{impossibleFit, 0}, Path{impossibleFit, 0}};
    for (int value = 0; value < 1 << part.width; ++value) {
        if ((allowed >> value & 1U) == 0)
            continue;
        const float fit = correlation(halves, value, part.width);
        const bool keeps = polarityAfter(value, part.width) > 0.0F;
        for (std::size_t state = 0; state < 2; ++state) {
            const float total = before[state].fit + (state == 0 ? fit : -fit);
            Path &path = paths[keeps ? state : 1 - state];
            if (total > path.fit) {
                path = {total, before[state].bits | static_cast<FrameBits>(value) << part.first};
            }
        }
    }
}

void Viterbi::known(float fit)
{
    paths[0].fit += fit;
    paths[1].fit -= fit;
}

float Viterbi::fit(bool anchored) const
{
    return anchored || paths[0].fit > paths[1].fit ? paths[0].fit : paths[1].fit;
}

FrameBits Viterbi::bits(bool anchored) const
{
    return anchored || paths[0].fit > paths[1].fit ? paths[0].bits : paths[1].bits;
}

} // namespace ltcreader
