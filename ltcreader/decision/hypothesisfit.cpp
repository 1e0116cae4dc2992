// SPDX-License-Identifier: MIT

// For an assumed label of the first frame the digits of every second are known, and so are the polarity
// changes that they cause. With those undone all seconds add up to one frame in which everything else stands
// still, and the trellis finds what that is.

#include "ltcreader/decision/hypothesisfit.h"

#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/viterbi.h"

#include <array>
#include <optional>

namespace ltcreader
{
namespace
{

std::optional<Digit> digitAt(int bit)
{
    for (std::size_t digit = 0; digit < digitCount; ++digit) {
        if (digitFields[digit].first == bit)
            return static_cast<Digit>(digit);
    }
    return std::nullopt;
}

std::optional<Digit> digitEndingAt(int bit)
{
    for (std::size_t digit = 0; digit < digitCount; ++digit) {
        if (digitFields[digit].end() - 1 == bit)
            return static_cast<Digit>(digit);
    }
    return std::nullopt;
}

/// All seconds of a average added up, as far as a hypothesis says how.
struct WholeSum {
    SecondSum halves{};
    std::array<float, digitCount> fits{}; // of the digits that the hypothesis gives
    std::array<bool, digitCount> given{};
};

void addSecond(const SecondSum &second, const Digits &digits, int correctionBit, WholeSum &sum)
{
    const auto addBit = [&](int bit, float polarity) {
        const auto half = 2 * static_cast<std::size_t>(bit);
        sum.halves[half] += polarity * second[half];
        sum.halves[half + 1] += polarity * second[half + 1];
    };
    float polarity = 1.0F;
    for (int bit = field::frameUnits.end(); bit < correctionBit; ++bit) {
        const auto digit = digitAt(bit);
        if (!digit || digits[*digit] < 0) {
            addBit(bit, polarity);
            continue;
        }
        const int width = digitFields[*digit].width;
        sum.fits[*digit] += polarity * correlation(halvesOf(second.data(), bit), digits[*digit], width);
        polarity *= polarityAfter(digits[*digit], width);
        bit += width - 1;
    }
    polarity = 1.0F;
    for (int bit = dataBits - 1; bit > correctionBit; --bit) {
        const auto ending = digitEndingAt(bit);
        if (!ending || digits[*ending] < 0) {
            addBit(bit, polarity);
            continue;
        }
        const BitField part = digitFields[*ending];
        polarity *= polarityAfter(digits[*ending], part.width);
        sum.fits[*ending] +=
            polarity * correlation(halvesOf(second.data(), part.first), digits[*ending], part.width);
        bit = part.first;
    }
}

void walk(Viterbi &trellis, const WholeSum &sum, const Allowed &allowed, int from, int to)
{
    for (int bit = from; bit < to; ++bit) {
        const float *halves = halvesOf(sum.halves.data(), bit);
        const auto digit = digitAt(bit);
        if (!digit) {
            trellis.free(bit, halves);
            continue;
        }
        if (sum.given[*digit]) {
            trellis.known(sum.fits[*digit]);
        } else {
            trellis.number(digitFields[*digit], halves, allowed[*digit]);
        }
        bit += digitFields[*digit].width - 1;
    }
}

struct FittingBits {
    float fit;
    FrameBits bits;
};

/// The bits that fit best with the digits that stand still among \a allowed.
FittingBits fittingBits(const CoherentAverage &average, const WholeSum &sum, const Allowed &allowed,
                        int correctionBit)
{
    Viterbi beginning(true);
    beginning.known(average.unitsFit);
    walk(beginning, sum, allowed, field::frameUnits.end(), field::frameTens.first);
    beginning.known(average.tensFit);
    walk(beginning, sum, allowed, field::frameTens.end(), correctionBit);
    Viterbi end(false);
    walk(end, sum, allowed, correctionBit + 1, dataBits);
    return {beginning.fit(false) + end.fit(true), beginning.bits(false) | end.bits(true)};
}

} // namespace

float fitOfNumbering(const CoherentAverage &average, int correctionBit)
{
    WholeSum sum;
    float secondsFit = 0.0F;
    Digits open{};
    open.fill(-1);
    for (const SecondSum &second : average.seconds) {
        addSecond(second, open, correctionBit, sum);
        Viterbi ofSecond(false);
        for (int bit = field::secondUnits.first; bit < correctionBit; ++bit)
            ofSecond.free(bit, halvesOf(second.data(), bit));
        secondsFit += ofSecond.fit(false);
    }
    Viterbi beginning(true);
    beginning.known(average.unitsFit);
    walk(beginning, sum, anyTime, field::frameUnits.end(), field::frameTens.first);
    beginning.known(average.tensFit);
    walk(beginning, sum, anyTime, field::frameTens.end(), field::secondUnits.first);
    Viterbi end(false);
    walk(end, sum, anyTime, correctionBit + 1, dataBits);
    return beginning.fit(false) + secondsFit + end.fit(true);
}

void evaluate(const CoherentAverage &average, Hypothesis &hypothesis)
{
    WholeSum sum;
    Digits digits{};
    for (std::size_t second = 0; second < average.seconds.size(); ++second) {
        digits = digitsAfter(hypothesis, static_cast<int>(second));
        addSecond(average.seconds[second], digits, hypothesis.correctionBit, sum);
    }
    for (std::size_t digit = 0; digit < digitCount; ++digit)
        sum.given[digit] = digits[digit] >= 0;
    FittingBits best{impossibleFit, 0};
    for (const HoursAllowed &hours : hoursOf(hypothesis)) {
        Allowed allowed = hypothesis.allowed;
        allowed[HourTens] &= hours.tens;
        allowed[HourUnits] &= hours.units;
        if (!sum.given[HourTens] && (allowed[HourTens] == 0 || allowed[HourUnits] == 0))
            continue;
        const FittingBits bits = fittingBits(average, sum, allowed, hypothesis.correctionBit);
        if (bits.fit > best.fit)
            best = bits;
    }
    hypothesis.fit = best.fit;
    hypothesis.bits = best.bits;
    putAssumedDigits(hypothesis);
}

} // namespace ltcreader
