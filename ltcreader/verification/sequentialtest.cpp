// SPDX-License-Identifier: MIT

// Log-likelihoods of different frames add up, so those of an alternative against the line, summed from the
// recording's beginning or to its end, show where labels jump.

#include "ltcreader/verification/sequentialtest.h"

#include "ltcreader/verification/strength.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace ltcreader
{
namespace
{

// [log-likelihood ratios]
constexpr double otherEnd = 7.0;    // for something else at the end, which a chimera of two lines would have
constexpr double impossible = -1e9; // a log-likelihood ratio

// What else it may be, as shares of the cases in which it is something else.
constexpr double shareOfNearLines = 0.5; // a line one or two frames, a second, a minute or an hour away
constexpr double shareOfOneDigit = 0.3;  // a line that differs in one digit
constexpr double shareOfAnyLine = 0.1;   // any other line
constexpr double shareOfMotions = 0.1;   // labels that do not count up

double sumOf(const LikelihoodRatios &ratios)
{
    double sum = 0.0;
    for (const double ratio : ratios)
        sum += ratio;
    return sum;
}

double bestWhole(const Alternatives &others)
{
    double best = -1e9;
    for (const LikelihoodRatios &ratios : others.ratios)
        best = std::max(best, sumOf(ratios));
    return best;
}

/// The sums of \a ratios over the first one, two, three... frames.
/// What repeats in every frame adds up as fast as evidence does.
std::vector<LikelihoodRatios> sumsOfFrames(const Alternatives &others, bool backwards,
                                           const ResidualVariance &residual)
{
    const double once = residual.total - residual.repeated;
    const double step = once > 0.0 ? residual.repeated / once : 0.0;
    std::vector<LikelihoodRatios> sums;
    for (LikelihoodRatios ratios : others.ratios) {
        if (backwards)
            std::reverse(ratios.begin(), ratios.end());
        double sum = 0.0;
        for (double &ratio : ratios)
            ratio = sum += ratio;
        for (std::size_t frame = 1; frame < ratios.size(); ++frame)
            ratios[frame] /= 1.0 + static_cast<double>(frame) * step;
        sums.push_back(std::move(ratios));
    }
    return sums;
}

/// The logarithm of the sum of likelihood ratios of which the logarithms are given.
double logSum(const std::vector<double> &logarithms)
{
    const double most = *std::max_element(logarithms.begin(), logarithms.end());
    double sum = 0.0;
    for (const double logarithm : logarithms)
        sum += std::exp(logarithm - most);
    return most + std::log(sum);
}

/// For the first one, two, three... frames the logarithm of the mean likelihood ratio of all \a others; \a
/// withLine: and of the line itself.
std::vector<double> meanRatios(const Alternatives &others, bool backwards, bool withLine,
                               const ResidualVariance &residual)
{
    const std::vector<LikelihoodRatios> sums = sumsOfFrames(others, backwards, residual);
    std::vector<double> means;
    for (std::size_t frame = 0; frame < sums.front().size(); ++frame) {
        std::vector<double> logarithms;
        if (withLine)
            logarithms.push_back(0.0);
        for (const LikelihoodRatios &ratios : sums)
            logarithms.push_back(ratios[frame]);
        means.push_back(logSum(logarithms) - std::log(static_cast<double>(logarithms.size())));
    }
    return means;
}

/// For the first one, two, three... frames the log-likelihood ratio of a recording that does something
/// else there, averaged over what else it may do; \a backwards: for the last ones.
std::vector<double> oddsOf(const AlternativeLines &alternatives, const std::vector<Alternatives> &lines,
                           const Alternatives &motions, bool backwards, const ResidualVariance &residual)
{
    const std::vector<double> near = meanRatios(alternatives.nearCounts(), backwards, false, residual);
    const std::vector<double> moving = meanRatios(motions, backwards, false, residual);
    std::vector<std::vector<double>> digits;
    std::vector<double> any(alternatives.frames());
    for (const Alternatives &others : lines) {
        digits.push_back(meanRatios(others, backwards, false, residual));
        const std::vector<double> withLine = meanRatios(others, backwards, true, residual);
        std::transform(any.begin(), any.end(), withLine.begin(), any.begin(), std::plus<>());
    }
    const double digitShare = shareOfOneDigit / static_cast<double>(lines.size());
    std::vector<double> sums;
    for (std::size_t frame = 0; frame < alternatives.frames(); ++frame) {
        std::vector<double> odds{std::log(shareOfNearLines) + near[frame],
                                 std::log(shareOfAnyLine) + any[frame],
                                 std::log(shareOfMotions) + moving[frame]};
        for (const std::vector<double> &digit : digits)
            odds.push_back(std::log(digitShare) + digit[frame]);
        sums.push_back(logSum(odds));
    }
    return sums;
}

/// The odds of something else at the beginning, which may end at any frame from \a first on; \a odds are
/// those for each end. Before \a latestProof nothing may speak for the line yet, so only what exceeds chance
/// counts there.
double oddsOfBeginning(const std::vector<double> &odds, int first, int latestProof)
{
    double sum = 0.0;
    const int ends = static_cast<int>(odds.size());
    for (int end = first; end < ends; ++end) {
        const double ratio = std::exp(odds[static_cast<std::size_t>(end)]);
        sum += end < latestProof ? std::max(0.0, ratio - 1.0) : ratio;
    }
    return sum > 0.0 ? std::log(sum / (ends - first)) : impossible;
}

/// The greatest of \a odds, but for those of one frame.
double mostOf(const std::vector<double> &odds)
{
    return odds.size() < leastStretch ? impossible
                                      : *std::max_element(odds.begin() + leastStretch - 1, odds.end());
}

} // namespace

Doubt testSequentially(const AlternativeLines &alternatives, const ResidualVariance &residual, int leastEnd,
                       int latestProof, double otherBeginning, double motion)
{
    const std::vector<Alternatives> lines = alternatives.digits();
    const Alternatives motions = alternatives.otherMotions();
    double best = contradiction;
    Doubt doubt = Doubt::None;
    for (const Alternatives &others : lines) {
        if (bestWhole(others) > best) {
            best = bestWhole(others);
            doubt = Doubt::TooNoisy;
        }
    }
    if (bestWhole(motions) > best)
        return motions.doubt;
    if (doubt != Doubt::None)
        return doubt;
    if (alternatives.frames() > 1 && bestWhole(motions) > motion)
        return motions.doubt;
    const std::vector<double> fromBeginning = oddsOf(alternatives, lines, motions, false, residual);
    const std::vector<double> fromEnd = oddsOf(alternatives, lines, motions, true, residual);
    const bool jumps =
        oddsOfBeginning(fromBeginning, leastEnd, latestProof) > otherBeginning || mostOf(fromEnd) > otherEnd;
    return jumps ? Doubt::Jump : Doubt::None;
}

} // namespace ltcreader
