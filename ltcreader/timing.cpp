// SPDX-License-Identifier: MIT

// The square wave that was decided for is laid over the sound a little early and a little late: which of both
// fits better, and by how much, tells where exactly it belongs. Done for some frames at a time, a line
// through these moments gives speed and position to a fraction of a sample.

#include "ltcreader/timing.h"

#include "ltcreader/halfbits.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr int rounds = 3;
constexpr double timingShift = 0.2; // [bits] to each side, on the flank of the half bits' correlation
constexpr int framesPerPart = 5;    // whose timing is measured together

/// Fit of the decided levels with the half bits summed \a shift [bits] late, for each part of the recording.
std::vector<double> fitsOfParts(const Candidate &candidate, const std::vector<float> &levels, double shift)
{
    const HalfBits halfBits = sumHalfBits(*candidate.sound, candidate.clock, shift);
    std::vector<double> fits(
        static_cast<std::size_t>((candidate.grid.frames + framesPerPart - 1) / framesPerPart));
    const int count = static_cast<int>(halfBits.values.size());
    for (int half = 0; half < candidate.grid.frames * halvesPerFrame; ++half) {
        const int place = half + candidate.grid.firstHalf;
        if (place < 0 || place >= count)
            continue;
        fits[static_cast<std::size_t>(half / (framesPerPart * halvesPerFrame))] +=
            static_cast<double>(levels[static_cast<std::size_t>(half)]) *
            static_cast<double>(halfBits.values[static_cast<std::size_t>(place)]);
    }
    return fits;
}

/// A line through the moments at which they fit best.
BitLine fitOnce(const Candidate &candidate, const std::vector<float> &levels)
{
    const std::vector<double> early = fitsOfParts(candidate, levels, -timingShift);
    const std::vector<double> exact = fitsOfParts(candidate, levels, 0.0);
    const std::vector<double> late = fitsOfParts(candidate, levels, timingShift);
    double earlySum = 0.0;
    double exactSum = 0.0;
    double lateSum = 0.0;
    for (std::size_t part = 0; part < exact.size(); ++part) {
        earlySum += early[part];
        exactSum += exact[part];
        lateSum += late[part];
    }
    const double curve = std::max(2.0 * exactSum - earlySum - lateSum, 0.05 * std::abs(exactSum) + 1e-9);
    const double partBits = framesPerPart * bitsPerFrame;
    double weights = 0.0;
    double meanBit = 0.0;
    double meanTime = 0.0;
    std::vector<std::array<double, 3>> points; // weight, bit, time
    for (std::size_t part = 0; part < exact.size(); ++part) {
        const double weight = std::max(0.0, exact[part]) / (std::abs(exactSum) + 1e-9);
        if (weight <= 0.0)
            continue;
        const double share = exact[part] / exactSum;
        const double lateness = std::clamp(timingShift * (late[part] - early[part]) / (2.0 * curve * share),
                                           -timingShift, timingShift);
        const double first = 0.5 * candidate.grid.firstHalf + static_cast<double>(part) * partBits;
        const double bit = first + 0.5 * partBits;
        const double time = candidate.clock.position(bit + lateness);
        points.push_back({weight, bit, time});
        weights += weight;
        meanBit += weight * bit;
        meanTime += weight * time;
    }
    BitLine line{candidate.clock.position(0.0), candidate.clock.bitLength};
    if (weights <= 0.0)
        return line;
    meanBit /= weights;
    meanTime /= weights;
    double products = 0.0;
    double squares = 0.0;
    for (const auto &[weight, bit, time] : points) {
        products += weight * (bit - meanBit) * (time - meanTime);
        squares += weight * (bit - meanBit) * (bit - meanBit);
    }
    if (squares > 0.0)
        line.slope = products / squares;
    line.start = meanTime - line.slope * meanBit;
    return line;
}

} // namespace

BitLine measureTiming(Candidate candidate, const std::vector<float> &levels)
{
    BitLine line;
    for (int round = 0; round < rounds; ++round) {
        line = fitOnce(candidate, levels);
        candidate.clock.bitLength = line.slope;
        candidate.clock.knots.assign(candidate.clock.knots.size(), line.start);
    }
    return line;
}

} // namespace ltcreader
