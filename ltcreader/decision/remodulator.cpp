// SPDX-License-Identifier: MIT
#include "ltcreader/decision/remodulator.h"

#include "ltcreader/decision/viterbi.h"

#include <algorithm>
#include <cstddef>

namespace ltcreader
{
namespace
{

void put(FrameBits &bits, BitField part, int value)
{
    bits &= ~(((FrameBits{1} << part.width) - 1) << part.first);
    bits |= static_cast<FrameBits>(value) << part.first;
}

/// All bits of frame \a frame, its number and moving digits included.
FrameBits bitsOfFrame(const Hypothesis &hypothesis, int frame)
{
    const auto [second, number] = placeOf(hypothesis.numbering, frame);
    FrameBits bits = hypothesis.bits;
    put(bits, field::frameUnits, number % 10);
    put(bits, field::frameTens, number / 10);
    const Digits digits = digitsFoundAfter(hypothesis, second);
    for (std::size_t digit = 0; digit < digitCount; ++digit)
        put(bits, digitFields[digit], digits[digit]);
    return bits;
}

/// Draws bit \a bit of the frame at \a frame, beginning with \a level; returns the level after it.
float drawBit(float *frame, int bit, bool one, float level)
{
    float *halves = frame + std::ptrdiff_t{2} * bit;
    halves[0] = level;
    halves[1] = one ? -level : level;
    return one ? level : -level;
}

void drawSyncWord(float *halves, float level)
{
    for (int bit = 0; bit < syncBits; ++bit)
        level = drawBit(halves, dataBits + bit, (syncWord >> bit & 1U) != 0, level);
}

} // namespace

std::vector<float> remodulate(const FrameGrid &grid, const Polarities &polarities,
                              const Hypothesis &hypothesis)
{
    std::vector<float> levels(grid.halves.size());
    for (int frame = 0; frame < grid.frames; ++frame) {
        const auto index = static_cast<std::size_t>(frame);
        const FrameBits bits = bitsOfFrame(hypothesis, frame);
        float *halves = levels.data() + index * halvesPerFrame;
        const auto isOne = [bits](int bit) { return (bits >> bit & 1U) != 0; };
        float level = polarities.atStart[index];
        for (int bit = 0; bit < hypothesis.correctionBit; ++bit)
            level = drawBit(halves, bit, isOne(bit), level);
        drawSyncWord(halves, polarities.atSync[index]);
        level = polarities.atSync[index];
        for (int bit = dataBits - 1; bit > hypothesis.correctionBit; --bit) {
            level = isOne(bit) ? level : -level;
            drawBit(halves, bit, isOne(bit), level);
        }
    }
    return levels;
}

std::vector<float> remodulateDigits(const FrameGrid &grid, const Hypothesis &hypothesis)
{
    std::vector<float> levels(grid.halves.size());
    for (int frame = 0; frame < grid.frames; ++frame) {
        const FrameBits bits = bitsOfFrame(hypothesis, frame);
        float *halves = levels.data() + static_cast<std::size_t>(frame) * halvesPerFrame;
        const auto draw = [&](BitField part) {
            const int value = fieldValue(bits, part);
            const float fit = correlation(halvesOf(grid.frame(frame), part.first), value, part.width);
            float level = fit < 0.0F ? -1.0F : 1.0F;
            for (int bit = 0; bit < part.width; ++bit)
                level = drawBit(halves, part.first + bit, (value >> bit & 1) != 0, level);
        };
        draw(field::frameUnits);
        draw(field::frameTens);
        for (const BitField part : digitFields)
            draw(part);
        drawSyncWord(halves, grid.syncs[static_cast<std::size_t>(frame)] < 0.0F ? -1.0F : 1.0F);
    }
    return levels;
}

double repeatedError(const FrameGrid &grid, const std::vector<float> &levels)
{
    double sum = 0.0;
    double squares = 0.0;
    double places = 0.0;
    double frames = 0.0;
    for (std::size_t half = 0; half < halvesPerFrame; ++half) {
        double fit = 0.0;
        double count = 0.0;
        for (std::size_t i = half; i < levels.size(); i += halvesPerFrame) {
            fit += static_cast<double>(levels[i]) * static_cast<double>(grid.halves[i]);
            count += levels[i] != 0.0F && grid.halves[i] != 0.0F ? 1.0 : 0.0;
        }
        if (count < 1.0)
            continue;
        sum += fit / count;
        squares += fit / count * (fit / count);
        frames += count;
        places += 1.0;
    }
    const double mean = sum / std::max(1.0, places);
    return (squares / std::max(1.0, places) - mean * mean) * frames / std::max(1.0, places);
}

double boundaryCorrelation(const FrameGrid &grid, const std::vector<float> &levels)
{
    double sum = 0.0;
    double squares = 0.0;
    double products = 0.0;
    double pairs = 0.0;
    for (std::size_t i = 1; i + 1 < levels.size(); i += 2) {
        const double before = static_cast<double>(levels[i]) * static_cast<double>(grid.halves[i]);
        const double after = static_cast<double>(levels[i + 1]) * static_cast<double>(grid.halves[i + 1]);
        if (before == 0.0 || after == 0.0)
            continue;
        sum += before + after;
        squares += before * before + after * after;
        products += before * after;
        pairs += 1.0;
    }
    const double mean = sum / std::max(1.0, 2.0 * pairs);
    const double variance = squares / 2.0 - pairs * mean * mean;
    return variance > 0.0 ? (products - pairs * mean * mean) / variance : 0.0;
}

} // namespace ltcreader
