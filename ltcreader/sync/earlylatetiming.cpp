// SPDX-License-Identifier: MIT

// The early-late gate: the square wave that was decided for is laid over the sound a little early and a
// little late: which of both fits better, and by how much, shows where exactly it belongs. Done for some
// frames at a time, a line through these moments gives speed and position to a fraction of a sample.

#include "ltcreader/sync/earlylatetiming.h"

#include "ltcreader/sync/integrateanddump.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr int rounds = 3; // each from the line of the last: lateness is measured best where it is small
constexpr double widestShift = 0.2;     // [bits] to each side, on the flank of the half bits' correlation
constexpr double narrowestShift = 0.02; // [bits]
constexpr double onFlank = 0.3;         // of the fit is there still: behind its foot the correlation turns
constexpr int leastPerPart = 64;        // [half bits] whose timing is measured together
constexpr int mostPerPart = 5 * halvesPerFrame;
constexpr int leastParts = 12; // fewer show less well how they agree
constexpr double fewParts =
    40.0; // quantile of Student's distribution over the normal one, times their square
constexpr double wander =
    0.02; // [bits] from end to end, in which parts agree: hum and wind move them together
constexpr double slopeReach = 1e-3; // of the clock, beyond which a measured slope is noise
constexpr double leastCurve = 0.05; // of the fit: a flatter curve is noise
constexpr double leastFit = 1e-9;   // keeps quotients finite

int halvesPerPart(const Candidate &candidate)
{
    return std::clamp(candidate.grid.frames * halvesPerFrame / leastParts, leastPerPart, mostPerPart);
}

/// Fit of the decided levels with the half bits summed \a shift [bits] late, for each part of the recording.
std::vector<double> fitsOfParts(const Candidate &candidate, const std::vector<float> &levels, double shift)
{
    const int perPart = halvesPerPart(candidate);
    const std::vector<float> halfBits = integrateHalfBits(*candidate.sound, candidate.clock, shift);
    std::vector<double> fits(
        static_cast<std::size_t>((candidate.grid.frames * halvesPerFrame + perPart - 1) / perPart));
    const int count = static_cast<int>(halfBits.size());
    for (int half = 0; half < candidate.grid.frames * halvesPerFrame; ++half) {
        const int place = half + candidate.grid.firstHalf;
        if (place < 0 || place >= count)
            continue;
        fits[static_cast<std::size_t>(half / perPart)] +=
            static_cast<double>(levels[static_cast<std::size_t>(half)]) *
            static_cast<double>(halfBits[static_cast<std::size_t>(place)]);
    }
    return fits;
}

/// Where a part of the recording belongs, and how much it has to say.
struct PartTiming {
    double weight;
    double bit;  // number of the bit in its middle
    double time; // [filtered samples] where that begins
};

/// The moments at which the decided levels fit the parts of the recording best.
std::vector<PartTiming> timingsOfParts(const Candidate &candidate, const std::vector<float> &levels)
{
    const std::vector<double> exact = fitsOfParts(candidate, levels, 0.0);
    const double exactSum = std::accumulate(exact.begin(), exact.end(), 0.0);
    std::vector<double> early;
    std::vector<double> late;
    double earlySum = 0.0;
    double lateSum = 0.0;
    double shift = 2.0 * widestShift;
    // The less a filter leaves of low frequencies, the narrower is the correlation.
    do {
        shift *= 0.5;
        early = fitsOfParts(candidate, levels, -shift);
        late = fitsOfParts(candidate, levels, shift);
        earlySum = std::accumulate(early.begin(), early.end(), 0.0);
        lateSum = std::accumulate(late.begin(), late.end(), 0.0);
    } while (shift > narrowestShift && earlySum + lateSum < 2.0 * onFlank * exactSum);
    // The curve of the fit has the same shape in all parts; a single part in noise would not show it.
    const double curve =
        std::max(2.0 * exactSum - earlySum - lateSum, leastCurve * std::abs(exactSum) + leastFit);
    const double partBits = 0.5 * halvesPerPart(candidate);
    std::vector<PartTiming> timings;
    for (std::size_t part = 0; part < exact.size(); ++part) {
        const double weight = exact[part] / (std::abs(exactSum) + leastFit);
        if (weight <= 0.0)
            continue;
        const double share = exact[part] / exactSum;
        const double lateness =
            std::clamp(shift * (late[part] - early[part]) / (2.0 * curve * share), -shift, shift);
        const double bit = 0.5 * candidate.grid.firstHalf + (static_cast<double>(part) + 0.5) * partBits;
        timings.push_back({weight, bit, candidate.clock.position(bit + lateness)});
    }
    return timings;
}

/// The weighted least squares line through \a timings; that of \a clock where they show nothing.
BitTiming lineThrough(const std::vector<PartTiming> &timings, const Clock &clock)
{
    BitTiming line{clock.position(0.0), clock.bitLength, slopeReach * clock.bitLength};
    double weights = 0.0;
    double meanBit = 0.0;
    double meanTime = 0.0;
    for (const PartTiming &timing : timings) {
        weights += timing.weight;
        meanBit += timing.weight * timing.bit;
        meanTime += timing.weight * timing.time;
    }
    if (weights <= 0.0)
        return line;
    meanBit /= weights;
    meanTime /= weights;
    double products = 0.0;
    double squares = 0.0;
    for (const PartTiming &timing : timings) {
        products += timing.weight * (timing.bit - meanBit) * (timing.time - meanTime);
        squares += timing.weight * (timing.bit - meanBit) * (timing.bit - meanBit);
    }
    // A single part has no slope, even if rounding leaves something in the squares.
    if (timings.size() > 2 && std::abs(products / squares / clock.bitLength - 1.0) < slopeReach) {
        line.bitLength = products / squares;
        double residuals = 0.0;
        for (const PartTiming &timing : timings)
            residuals += timing.weight *
                         std::pow(timing.time - meanTime - line.bitLength * (timing.bit - meanBit), 2.0);
        const auto freedom = static_cast<double>(timings.size() - 2);
        const double chance =
            (1.0 + fewParts / (freedom * freedom)) * std::sqrt(residuals / freedom / squares);
        line.bitLengthDeviation =
            std::hypot(chance, wander * clock.bitLength / (timings.back().bit - timings.front().bit));
    }
    line.start = meanTime - line.bitLength * meanBit;
    return line;
}

void setClock(Clock &clock, const BitTiming &line)
{
    clock.bitLength = line.bitLength;
    clock.knots.assign(clock.knots.size(), line.start);
}

} // namespace

BitTiming measureTiming(Candidate candidate, const std::vector<float> &levels)
{
    BitTiming line;
    for (int round = 0; round < rounds; ++round) {
        line = lineThrough(timingsOfParts(candidate, levels), candidate.clock);
        setClock(candidate.clock, line);
    }
    return line;
}

Candidate retimed(Candidate candidate, const BitTiming &line)
{
    setClock(candidate.clock, line);
    cutAgain(candidate);
    return candidate;
}

} // namespace ltcreader
