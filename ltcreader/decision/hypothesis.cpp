// SPDX-License-Identifier: MIT
#include "ltcreader/decision/hypothesis.h"

#include "ltcreader/decision/likelihood.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr int secondsPerMinute = 60;
constexpr int minutesPerHour = 60;
constexpr int hoursPerDay = 24;
constexpr int frameThatCounts = 2;    // two whole frames of other labels would be another beginning
constexpr double leastDoubt = 1e-300; // keeps logarithms finite

/// The hypotheses in which the minute changes \a hypothesis.second seconds before a full one.
void addWithMinutes(Hypothesis hypothesis, std::vector<Hypothesis> &hypotheses)
{
    const bool numbersDropped = hypothesis.numbering.droppedAt >= 0;
    for (hypothesis.minute = 0; hypothesis.minute < minutesPerHour; ++hypothesis.minute) {
        const bool mayDrop = hypothesis.minute % 10 != 9; // the minute that follows
        if (numbersDropped && !mayDrop)
            continue;
        // With the flag set, numbers are left out exactly where the minute asks for it.
        hypothesis.allowed[DropFlag] = numbersDropped ? 0b10 : mayDrop ? 0b01 : anyBit;
        hypothesis.hour = -1;
        if (hypothesis.minute < minutesPerHour - 1) {
            hypotheses.push_back(hypothesis);
            continue;
        }
        for (hypothesis.hour = 0; hypothesis.hour < hoursPerDay; ++hypothesis.hour)
            hypotheses.push_back(hypothesis);
    }
}

} // namespace

Digits digitsAfter(const Hypothesis &hypothesis, int later)
{
    const int second = hypothesis.second + later;
    Digits digits{};
    digits.fill(-1);
    digits[SecondUnits] = second % secondsPerMinute % 10;
    digits[SecondTens] = second % secondsPerMinute / 10;
    if (hypothesis.doubted)
        digits[*hypothesis.doubted] = -1;
    if (hypothesis.minute < 0)
        return digits;
    const int minute = hypothesis.minute + second / secondsPerMinute;
    digits[MinuteUnits] = minute % minutesPerHour % 10;
    digits[MinuteTens] = minute % minutesPerHour / 10;
    if (hypothesis.hour < 0)
        return digits;
    const int hour = (hypothesis.hour + minute / minutesPerHour) % hoursPerDay;
    digits[HourUnits] = hour % 10;
    digits[HourTens] = hour / 10;
    return digits;
}

Digits digitsFoundAfter(const Hypothesis &hypothesis, int later)
{
    Digits digits = digitsAfter(hypothesis, later);
    for (std::size_t digit = 0; digit < digitCount; ++digit) {
        if (digits[digit] < 0)
            digits[digit] = fieldValue(hypothesis.bits, digitFields[digit]);
    }
    return digits;
}

void putAssumedDigits(Hypothesis &hypothesis)
{
    const Digits first = digitsAfter(hypothesis, 0);
    for (std::size_t digit = 0; digit < digitCount; ++digit) {
        if (first[digit] >= 0)
            hypothesis.bits |= static_cast<FrameBits>(first[digit]) << digitFields[digit].first;
    }
}

std::vector<Hypothesis> hypothesesWith(const FrameNumbering &numbering, int frames)
{
    std::vector<Hypothesis> hypotheses;
    const int last = secondsTouched(numbering, frames) - 1;
    for (int second = 0; second < secondsPerMinute; ++second) {
        if (numbering.droppedAt >= 0 && second + numbering.droppedAt != secondsPerMinute)
            continue;
        Hypothesis hypothesis;
        hypothesis.numbering = numbering;
        hypothesis.second = second;
        if (second + last < secondsPerMinute) {
            hypotheses.push_back(hypothesis);
        } else {
            addWithMinutes(hypothesis, hypotheses);
        }
    }
    return hypotheses;
}

bool sameTimecode(const Hypothesis &a, const Hypothesis &b, int frame)
{
    const auto [secondA, numberA] = placeOf(a.numbering, frame);
    const auto [secondB, numberB] = placeOf(b.numbering, frame);
    const Digits digitsA = digitsFoundAfter(a, secondA);
    const Digits digitsB = digitsFoundAfter(b, secondB);
    return numberA == numberB &&
           std::equal(digitsA.begin() + SecondUnits, digitsA.end(), digitsB.begin() + SecondUnits);
}

std::vector<Hypothesis> rivalsOf(const Hypothesis &best, const std::vector<Hypothesis> &others, int frames,
                                 const std::function<void(Hypothesis &)> &evaluate)
{
    std::vector<Hypothesis> rivals;
    const auto addEvaluated = [&](Hypothesis rival) {
        evaluate(rival);
        rivals.push_back(rival);
    };
    // Of another base may also be what agrees once the first second is full: there even a part of the first
    // frame counts.
    const int middle = frames / 2;
    const int early = std::min(frameThatCounts, middle);
    const Hypothesis *counting = nullptr; // over a minute that its flag would have it skip labels of
    for (const Hypothesis &other : others) {
        const int first = other.numbering.base == best.numbering.base ? early : 0;
        if (sameTimecode(other, best, first) && sameTimecode(other, best, middle))
            continue;
        rivals.push_back(other);
        const bool mustBeUnflagged = other.numbering.base == 30 && other.allowed[DropFlag] == 0b01;
        if (mustBeUnflagged && (!counting || other.fit > counting->fit))
            counting = &other;
    }
    if (counting) {
        Hypothesis flagged = *counting;
        flagged.allowed[DropFlag] = anyBit;
        addEvaluated(flagged);
    }
    const Digits assumed = digitsAfter(best, 0);
    for (const Digit digit : {DropFlag, MinuteUnits, MinuteTens, HourUnits, HourTens}) {
        if (assumed[digit] >= 0 || (digit == DropFlag && best.numbering.base != 30))
            continue;
        Hypothesis other = best;
        other.realHours = false;
        other.allowed[digit] = ((1U << (1 << digitFields[digit].width)) - 1U) &
                               ~(1U << fieldValue(best.bits, digitFields[digit]));
        addEvaluated(other);
    }
    for (const Digit digit : {SecondUnits, SecondTens}) {
        Hypothesis other = best;
        other.doubted = digit;
        other.allowed[digit] = ((1U << (1 << digitFields[digit].width)) - 1U) & ~anyTime[digit];
        addEvaluated(other);
    }
    Hypothesis unreal = best;
    unreal.numbering.illegalTens = true;
    addEvaluated(unreal);
    return rivals;
}

double marginOf(const Hypothesis &best, const std::vector<Hypothesis> &rivals, double perFit,
                double measuredRate)
{
    const double penalty = speedPenalty(best.numbering.base, measuredRate);
    double sum = 0.0; // of likelihood ratios of rivals against best
    for (const Hypothesis &rival : rivals) {
        const double speedLoss = speedPenalty(rival.numbering.base, measuredRate) - penalty;
        sum += std::exp(std::min(0.0, perFit * static_cast<double>(rival.fit - best.fit) - speedLoss));
    }
    return -std::log(sum + leastDoubt);
}

std::vector<HoursAllowed> hoursOf(const Hypothesis &hypothesis)
{
    if (hypothesis.realHours)
        return {hoursAllowed.begin(), hoursAllowed.end()};
    return {{0xF, 0xFFFF}};
}

double speedPenalty(int base, double measuredRate)
{
    constexpr double trueSpeed = 0.0015; // as the logarithm of the quotient of speeds
    constexpr double nearSpeed = 0.012;
    constexpr double nearPenalty = 4.0; // [log-likelihood] taken for one machine in fifty
    constexpr double farPenalty = 8.0;  // [log-likelihood] taken for one in three thousand
    const timecode::Rate whole{base, false, false};
    const timecode::Rate ntsc{base, base != 25, false};
    const double error = std::min(std::abs(std::log(measuredRate / whole.framesPerSecond())),
                                  std::abs(std::log(measuredRate / ntsc.framesPerSecond())));
    return error < trueSpeed ? 0.0 : error < nearSpeed ? nearPenalty : farPenalty;
}

const Hypothesis &bestOf(const std::vector<Hypothesis> &hypotheses, double perFit, double measuredRate)
{
    const auto likelihood = [&](const Hypothesis &hypothesis) {
        return perFit * static_cast<double>(hypothesis.fit) -
               speedPenalty(hypothesis.numbering.base, measuredRate);
    };
    return *std::max_element(
        hypotheses.begin(), hypotheses.end(),
        [&](const Hypothesis &a, const Hypothesis &b) { return likelihood(a) < likelihood(b); });
}

} // namespace ltcreader
