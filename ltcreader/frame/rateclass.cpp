// SPDX-License-Identifier: MIT
#include "ltcreader/frame/rateclass.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr double toleratedSpeed = 0.13; // machines that run faster or slower than that do not exist
constexpr double provenClass = 4.3;     // standard deviations between the measured speed and the midpoint
constexpr double nearSpeed = 0.012;     // most machines that do not run true come that near
constexpr int provingSeconds = 3;       // touched: two returns of the frame number, where a jump makes one
constexpr double leastDeviation = 1e-6; // [samples] keeps quotients finite

/// Whether the speed is that of a way of counting other than \a base.
bool isRateOfAnotherBase(int base, double frameLength, int sampleRate)
{
    return std::any_of(waysOfCounting.begin(), waysOfCounting.end(), [&](timecode::Rate way) {
        const double whole = speedError(frameLength, {way.base, false, false}, sampleRate);
        const double ntsc = speedError(frameLength, {way.base, way.base != 25, false}, sampleRate);
        return way.base != base && std::min(whole, ntsc) < speedMatters;
    });
}

/// How far the speed is from the midpoint between the rate of \a line and its neighbour in the ratio of
/// 1000/1001, on the side of that rate [standard deviations]; very far where there is nothing to distinguish.
double distanceFromMidpoint(const FoundLine &line, int sampleRate,
                            const std::optional<timecode::Rate> &wanted)
{
    constexpr double veryFar = 100.0;
    if (line.rate.base == 25 || wanted || speedError(line.frameLength, line.rate, sampleRate) > speedMatters)
        return veryFar;
    const double midpoint = std::sqrt(1000.0 / 1001.0) * line.rate.base; // [frames/s]
    const double distance =
        std::log(sampleRate / line.frameLength / midpoint) * (line.rate.ntsc ? -1.0 : 1.0);
    return std::clamp(distance * line.frameLength / std::max(leastDeviation, line.lengthDeviation), -veryFar,
                      veryFar);
}

/// \a rate with ntsc as the measured frame length [samples] shows. Where the speed fits neither of both, \a
/// wanted decides.
timecode::Rate rateBySpeed(timecode::Rate rate, double frameLength, int sampleRate,
                           const std::optional<timecode::Rate> &wanted)
{
    if (rate.base == 25)
        return rate;
    const double wholeError = speedError(frameLength, {rate.base, false, false}, sampleRate);
    const double ntscError = speedError(frameLength, {rate.base, true, false}, sampleRate);
    rate.ntsc = ntscError < wholeError;
    if (wanted && std::min(wholeError, ntscError) > speedMatters)
        rate.ntsc = wanted->ntsc;
    if (rate.dropFrame)
        rate.ntsc = true;
    return rate;
}

/// The probability, by the measured speed alone, that the class of the rate of \a line is the other one.
double chanceOfOtherClass(const FoundLine &line, int sampleRate, const std::optional<timecode::Rate> &wanted)
{
    const double distance = distanceFromMidpoint(line, sampleRate, wanted);
    return 0.5 * std::erfc(distance / std::numbers::sqrt2); // the tail of a normal distribution
}

} // namespace

double speedError(double frameLength, const timecode::Rate &rate, int sampleRate)
{
    return std::abs(std::log(sampleRate / frameLength / rate.framesPerSecond()));
}

bool setRateClass(FoundLine &line, int sampleRate, const std::optional<timecode::Rate> &wanted)
{
    line.rate = rateBySpeed(line.rate, line.frameLength, sampleRate, wanted);
    line.classDoubt = chanceOfOtherClass(line, sampleRate, wanted);
    return !wanted || (wanted->base == line.rate.base && wanted->ntsc == line.rate.ntsc);
}

Doubt doubtAboutSpeed(const FoundLine &line, int seconds, int sampleRate,
                      const std::optional<timecode::Rate> &wanted)
{
    const double error = speedError(line.frameLength, line.rate, sampleRate);
    if (!(error < toleratedSpeed))
        return Doubt::Speed;
    if (!wanted && seconds < provingSeconds && error > nearSpeed &&
        isRateOfAnotherBase(line.rate.base, line.frameLength, sampleRate))
        return Doubt::Speed;
    const double distance = distanceFromMidpoint(line, sampleRate, wanted);
    if (std::abs(distance) < provenClass)
        return Doubt::RateClass;
    return distance > 0.0 ? Doubt::None : Doubt::FalseFlag;
}

} // namespace ltcreader
