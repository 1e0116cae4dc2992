// SPDX-License-Identifier: MIT

// Where user bits change, or the phase correction bit is not what it should be, the polarity is unknown in
// the middle of a frame, and frames cannot be added up. But every digit can be looked at alone: how likely
// its half bits are for each value it may have, whichever polarity it begins with. Frames and digits are
// independent of each other then, and the log-likelihood of a label for the first frame is the sum over all
// digits that follow from it.

#include "ltcreader/decision/digitdecision.h"

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/remodulator.h"
#include "ltcreader/decision/viterbi.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double leastEvidence = 3.0; // log-likelihood of each digit against digits that come as they like

/// Log-likelihood of each value of a digit, up to what is common to all values.
using Likelihoods = std::array<double, 16>;

void add(Likelihoods &sum, const Likelihoods &other)
{
    for (std::size_t value = 0; value < sum.size(); ++value)
        sum[value] += other[value];
}

/// The digits of one frame, or of several added up.
struct DigitLikelihoods {
    Likelihoods frameUnits{};
    Likelihoods frameTens{};
    std::array<Likelihoods, digitCount> digits{};
};

Likelihoods likelihoodsOf(const float *frame, BitField part, double scale)
{
    Likelihoods result{};
    for (int value = 0; value < 1 << part.width; ++value) {
        const float fit = correlation(halvesOf(frame, part.first), value, part.width);
        result[static_cast<std::size_t>(value)] = logCosh(scale * static_cast<double>(fit));
    }
    return result;
}

/// The log-likelihood that each unit of correlation is worth by the sync words alone, whose \a amplitude is
/// given.
double scaleOf(double amplitude)
{
    const double held = believableAmplitude(amplitude);
    return held / noiseBeside(held);
}

std::vector<DigitLikelihoods> likelihoodsOfFrames(const FrameGrid &grid, double scale)
{
    std::vector<DigitLikelihoods> frames;
    for (int frame = 0; frame < grid.frames; ++frame) {
        DigitLikelihoods &likelihoods = frames.emplace_back();
        likelihoods.frameUnits = likelihoodsOf(grid.frame(frame), field::frameUnits, scale);
        likelihoods.frameTens = likelihoodsOf(grid.frame(frame), field::frameTens, scale);
        for (std::size_t digit = 0; digit < digitCount; ++digit)
            likelihoods.digits[digit] = likelihoodsOf(grid.frame(frame), digitFields[digit], scale);
    }
    return frames;
}

/// All frames under one numbering.
struct NumberedSum {
    FrameNumbering numbering;
    double numberFit = 0.0; ///< of the frame numbers
    std::vector<std::array<Likelihoods, digitCount>> seconds;
    std::array<Likelihoods, digitCount> whole{}; ///< all seconds, for digits that stand still
};

NumberedSum sumUnder(const FrameNumbering &numbering, const std::vector<DigitLikelihoods> &frames)
{
    const int count = static_cast<int>(frames.size());
    NumberedSum sum{numbering, 0.0, {}, {}};
    sum.seconds.resize(static_cast<std::size_t>(secondsTouched(numbering, count)));
    for (int frame = 0; frame < count; ++frame) {
        const auto [second, number] = placeOf(numbering, frame);
        const DigitLikelihoods &likelihoods = frames[static_cast<std::size_t>(frame)];
        sum.numberFit += likelihoods.frameUnits[static_cast<std::size_t>(number % 10)] +
                         likelihoods.frameTens[static_cast<std::size_t>(number / 10)];
        for (std::size_t digit = 0; digit < digitCount; ++digit) {
            add(sum.seconds[static_cast<std::size_t>(second)][digit], likelihoods.digits[digit]);
            add(sum.whole[digit], likelihoods.digits[digit]);
        }
    }
    return sum;
}

/// The likeliest value among \a allowed.
int likeliest(const Likelihoods &likelihoods, std::uint32_t allowed)
{
    int best = -1;
    for (int value = 0; value < static_cast<int>(likelihoods.size()); ++value) {
        const auto index = static_cast<std::size_t>(value);
        if ((allowed >> value & 1U) != 0 &&
            (best < 0 || likelihoods[index] > likelihoods[static_cast<std::size_t>(best)]))
            best = value;
    }
    return best;
}

/// Sets fit and bits of \a hypothesis, by whose numbering \a sum was made.
void evaluate(const NumberedSum &sum, Hypothesis &hypothesis)
{
    double assumedFit = sum.numberFit;
    Digits digits{};
    for (std::size_t second = 0; second < sum.seconds.size(); ++second) {
        digits = digitsAfter(hypothesis, static_cast<int>(second));
        for (std::size_t digit = 0; digit < digitCount; ++digit) {
            if (digits[digit] >= 0)
                assumedFit += sum.seconds[second][digit][static_cast<std::size_t>(digits[digit])];
        }
    }
    hypothesis.fit = impossibleFit;
    for (const HoursAllowed &hours : hoursOf(hypothesis)) {
        Allowed allowed = hypothesis.allowed;
        allowed[HourTens] &= hours.tens;
        allowed[HourUnits] &= hours.units;
        double fit = assumedFit;
        FrameBits bits = 0;
        bool possible = true;
        for (std::size_t digit = 0; digit < digitCount; ++digit) {
            if (digits[digit] >= 0)
                continue;
            const int value = likeliest(sum.whole[digit], allowed[digit]);
            possible = possible && value >= 0;
            if (!possible)
                break;
            fit += sum.whole[digit][static_cast<std::size_t>(value)];
            bits |= static_cast<FrameBits>(value) << digitFields[digit].first;
        }
        if (possible && fit > static_cast<double>(hypothesis.fit)) {
            hypothesis.fit = static_cast<float>(fit);
            hypothesis.bits = bits;
        }
    }
    putAssumedDigits(hypothesis);
}

/// Log-likelihood of \a value against any other with the same right, for \a width bits.
double evidence(const Likelihoods &likelihoods, int value, int width)
{
    const auto count = std::size_t{1} << width;
    double sum = 0.0;
    for (std::size_t other = 0; other < count; ++other)
        sum += std::exp(likelihoods[other] - likelihoods[static_cast<std::size_t>(value)]);
    return std::log(static_cast<double>(count) / sum);
}

/// Whether each digit by itself speaks for \a hypothesis. What only looks like timecode has some digits that
/// come as they like.
bool isSeenInAllDigits(const Hypothesis &hypothesis, const std::vector<DigitLikelihoods> &frames)
{
    double units = 0.0;
    double tens = 0.0;
    std::array<double, digitCount> digits{};
    for (std::size_t frame = 0; frame < frames.size(); ++frame) {
        const auto [second, number] = placeOf(hypothesis.numbering, static_cast<int>(frame));
        const Digits found = digitsFoundAfter(hypothesis, second);
        units += evidence(frames[frame].frameUnits, number % 10, field::frameUnits.width);
        tens += evidence(frames[frame].frameTens, number / 10, field::frameTens.width);
        for (std::size_t digit = 0; digit < digitCount; ++digit)
            digits[digit] += evidence(frames[frame].digits[digit], found[digit], digitFields[digit].width);
    }
    return units > leastEvidence && tens > leastEvidence &&
           *std::min_element(digits.begin() + SecondUnits, digits.end()) > leastEvidence;
}

/// How much the digits of a hypothesis resemble the half bits in any polarity.
struct Correlation {
    double amplitude = 0.0;    ///< of the timecode in half bits of mean square 1
    double significance = 0.0; ///< in standard deviations of what chance brings
};

/// The fits of frame numbers and digits, each with the polarity that suits it, gathered.
class PartFits
{
public:
    /// Adds \a part of frame \a frame, for which \a levels were decided.
    void add(const FrameGrid &grid, const std::vector<float> &levels, int frame, BitField part);

    Correlation correlation() const;

private:
    double magnitudes = 0.0; ///< of fits, in standard deviations of noise
    double count = 0.0;
    double squares = 0.0;       ///< of fits
    double halvesSum = 0.0;     ///< of the half bits that each part has
    double halvesSquares = 0.0; ///< of the same
};

void PartFits::add(const FrameGrid &grid, const std::vector<float> &levels, int frame, BitField part)
{
    const auto first =
        static_cast<std::size_t>(frame) * halvesPerFrame + 2 * static_cast<std::size_t>(part.first);
    double sum = 0.0;
    double used = 0.0;
    for (std::size_t half = first; half < first + 2 * static_cast<std::size_t>(part.width); ++half) {
        sum += static_cast<double>(levels[half]) * static_cast<double>(grid.halves[half]);
        used += grid.halves[half] != 0.0F ? 1.0 : 0.0;
    }
    if (used < 1.0)
        return;
    magnitudes += std::abs(sum) / std::sqrt(used);
    count += 1.0;
    squares += sum * sum;
    halvesSum += used;
    halvesSquares += used * used;
}

Correlation PartFits::correlation() const
{
    constexpr double meanMagnitude = 0.7979; // of a normal distribution: sqrt(2 / pi)
    constexpr double deviation = 0.6028;     // of that magnitude: sqrt(1 - 2 / pi)
    const double parts = std::max(1.0, count);
    // Over n half bits timecode of the amplitude a fits with n * a, and noise adds n to the square of that.
    return {std::sqrt(std::max(0.0, squares - halvesSum) / std::max(1.0, halvesSquares)),
            (magnitudes - parts * meanMagnitude) / (deviation * std::sqrt(parts))};
}

Correlation correlationOf(const FrameGrid &grid, const std::vector<float> &levels)
{
    PartFits fits;
    for (int frame = 0; frame < grid.frames; ++frame) {
        fits.add(grid, levels, frame, field::frameUnits);
        fits.add(grid, levels, frame, field::frameTens);
        for (std::size_t digit = SecondUnits; digit < digitCount; ++digit)
            fits.add(grid, levels, frame, digitFields[digit]);
    }
    return fits.correlation();
}

} // namespace

std::optional<LabelDecision> decideByDigits(const FrameGrid &grid, double measuredRate)
{
    if (grid.frames < 1)
        return std::nullopt;
    const double syncAmplitude = possiblePolarities(grid).front().amplitude;
    const double scale = scaleOf(syncAmplitude);
    const std::vector<DigitLikelihoods> frames = likelihoodsOfFrames(grid, scale);
    std::vector<Hypothesis> hypotheses;
    for (const FrameNumbering &numbering : possibleNumberings(grid.frames)) {
        const NumberedSum sum = sumUnder(numbering, frames);
        for (Hypothesis hypothesis : hypothesesWith(numbering, grid.frames)) {
            evaluate(sum, hypothesis);
            hypotheses.push_back(hypothesis);
        }
    }
    const Hypothesis &best = bestOf(hypotheses, 1.0, measuredRate); // fits are log-likelihoods here
    if (!isSeenInAllDigits(best, frames))
        return std::nullopt;
    auto decision = decisionFor(best, grid.frames);
    if (!decision)
        return std::nullopt;
    const auto evaluateAgain = [&](Hypothesis &other) { evaluate(sumUnder(other.numbering, frames), other); };
    decision->levels = remodulateDigits(grid, best);
    const Correlation correlation = correlationOf(grid, decision->levels);
    decision->amplitude = correlation.amplitude;
    decision->significance = correlation.significance;
    decision->syncAmplitude = syncAmplitude;
    const double unexplained = noiseBeside(decision->amplitude);
    const double repeated = repeatedError(grid, decision->levels);
    decision->repetition = repeated / unexplained;
    // Fits are log-likelihoods already, as far as sync words show the noise. They are worth less where
    // digits are noisier, or where errors repeat or are correlated.
    const double correlated = 1.0 + std::max(0.0, boundaryCorrelation(grid, decision->levels));
    const double perFit = decision->amplitude / (correlated * std::max(unexplained, repeated));
    const double worth = std::min(1.0, perFit / scale);
    decision->margin =
        marginOf(best, rivalsOf(best, hypotheses, grid.frames, evaluateAgain), worth, measuredRate);
    return decision;
}

} // namespace ltcreader
