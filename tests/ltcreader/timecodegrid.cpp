// SPDX-License-Identifier: MIT
#include "tests/ltcreader/timecodegrid.h"

#include <cmath>
#include <random>

using namespace ltcreader;

namespace
{

FrameBits fieldBits(BitField part, int value)
{
    return static_cast<FrameBits>(value) << part.first;
}

FrameBits bitsOf(const timecode::Label &label, bool dropFrame)
{
    return fieldBits(field::frameUnits, label.frames % 10) | fieldBits(field::frameTens, label.frames / 10) |
           fieldBits(field::dropFrame, dropFrame ? 1 : 0) |
           fieldBits(field::secondUnits, label.seconds % 10) |
           fieldBits(field::secondTens, label.seconds / 10) |
           fieldBits(field::minuteUnits, label.minutes % 10) |
           fieldBits(field::minuteTens, label.minutes / 10) | fieldBits(field::hourUnits, label.hours % 10) |
           fieldBits(field::hourTens, label.hours / 10);
}

} // namespace

FrameGrid gridOfTimecode(const timecode::Label &start, const timecode::Rate &rate, int frames,
                         const UserBits &userBits)
{
    FrameGrid grid;
    grid.frames = frames;
    float level = 1.0F;
    const auto addBit = [&](bool one) {
        grid.halves.push_back(level);
        grid.halves.push_back(one ? -level : level);
        level = one ? level : -level;
    };
    for (int frame = 0; frame < frames; ++frame) {
        const timecode::Label label = labelAt(frameCount(start, rate) + frame, rate);
        const FrameBits bits = bitsOf(label, rate.dropFrame) | userBits(frame);
        for (int bit = 0; bit < dataBits; ++bit)
            addBit((bits >> bit & 1U) != 0);
        for (int bit = 0; bit < syncBits; ++bit)
            addBit((syncWord >> bit & 1U) != 0);
    }
    measureSyncs(grid);
    return grid;
}

void addNoise(FrameGrid &grid, double deviation)
{
    std::mt19937 engine(1);
    std::normal_distribution<double> noise(0.0, deviation);
    double squares = 0.0;
    for (float &half : grid.halves) {
        half += static_cast<float>(noise(engine));
        squares += static_cast<double>(half * half);
    }
    const auto scale = static_cast<float>(std::sqrt(static_cast<double>(grid.halves.size()) / squares));
    for (float &half : grid.halves)
        half *= scale;
    measureSyncs(grid);
}
