// SPDX-License-Identifier: MIT

// The likelihood of a label is the sum over all that its frame may hold besides: the polarity at its start
// and the bits between digits. It is computed by the forward recursion of L. Bahl, J. Cocke, F. Jelinek and
// J. Raviv on the trellis of the two polarities. User bits that were decided are taken for these, or, with
// the same probability for the whole frame, for any. The sync word of a frame and its neighbours gives the
// amplitude: where timecode pauses or fades there is no evidence for anything.

#include "ltcreader/verification/frameevidence.h"

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/remodulator.h"
#include "ltcreader/decision/viterbi.h"
#include "ltcreader/verification/strength.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr double polarityTrust = 0.9; // in those of the sync words before: labels that jump may change them

/// The weights of what fits with \a fit where it begins high, with -fit where it begins low; that of a fit of
/// \a most is 1.
std::array<double, 2> weightsOf(double fit, double most)
{
    return {std::exp(fit - most), std::exp(-fit - most)};
}

} // namespace

PartValues valuesOf(const timecode::Label &label, bool dropFrame)
{
    return {label.frames % 10,  label.frames / 10,  dropFrame ? 1 : 0, label.seconds % 10, label.seconds / 10,
            label.minutes % 10, label.minutes / 10, label.hours % 10,  label.hours / 10};
}

FrameEvidence::FrameEvidence(const float *halves, const float *levels, double scale, double polarity)
    : atStart{1.0 + polarity, 1.0 - polarity}
{
    for (std::size_t part = 0; part < partCount; ++part) {
        const BitField place = parts[part];
        std::array<double, 16> fits{};
        double most = 0.0;
        for (int value = 0; value < 1 << place.width; ++value) {
            double &fit = fits[static_cast<std::size_t>(value)];
            fit = scale * static_cast<double>(correlation(halvesOf(halves, place.first), value, place.width));
            most = std::max(most, std::abs(fit));
        }
        for (std::size_t value = 0; value < fits.size(); ++value)
            ofParts[part][value] = weightsOf(fits[value], most);
    }
    const double sync = scale * static_cast<double>(syncCorrelation(halvesOf(halves, dataBits)));
    atSync = weightsOf(sync, std::abs(sync));
    assumptions.push_back(bitsBetween(halves, nullptr, scale));
    if (levels != nullptr)
        assumptions.push_back(bitsBetween(halves, levels, scale));
}

FrameEvidence::BitsBetween FrameEvidence::bitsBetween(const float *halves, const float *levels, double scale)
{
    BitsBetween between;
    for (std::size_t part = 0; part < partCount; ++part) {
        auto &ways = between.behind[part];
        ways = {Weights{1.0, 0.0}, Weights{0.0, 1.0}};
        const int end = part + 1 < partCount ? parts[part + 1].first : dataBits;
        for (int bit = parts[part].end(); bit < end; ++bit) {
            const float *pair = halvesOf(halves, bit);
            // The halves of a zero have the same level, those of a one opposite ones; 0 is not known.
            // Flags never are: a wrong digit next to one may have bent it.
            const float decided =
                levels == nullptr || !isUserBit(bit) ? 0.0F : levels[2 * bit] * levels[2 * bit + 1];
            const double one = scale * static_cast<double>(pair[0] - pair[1]);
            const double zero = scale * static_cast<double>(pair[0] + pair[1]);
            const double most = decided < 0.0F   ? std::abs(one)
                                : decided > 0.0F ? std::abs(zero)
                                                 : std::max(std::abs(one), std::abs(zero));
            const Weights keeps = decided > 0.0F ? Weights{} : weightsOf(one, most);
            const Weights changes = decided < 0.0F ? Weights{} : weightsOf(zero, most);
            for (Weights &way : ways) {
                way = {way[0] * keeps[0] + way[1] * changes[1], way[1] * keeps[1] + way[0] * changes[0]};
            }
            between.logWeight += most - (decided == 0.0F ? std::numbers::ln2 : 0.0);
        }
    }
    return between;
}

double FrameEvidence::likelihood(const PartValues &values, const BitsBetween &between) const
{
    Weights state = atStart;
    for (std::size_t part = 0; part < partCount; ++part) {
        const Weights &weights = ofParts[part][static_cast<std::size_t>(values[part])];
        state = {state[0] * weights[0], state[1] * weights[1]};
        if (polarityAfter(values[part], parts[part].width) < 0.0F)
            std::swap(state[0], state[1]);
        const auto &ways = between.behind[part];
        state = {state[0] * ways[0][0] + state[1] * ways[1][0],
                 state[0] * ways[0][1] + state[1] * ways[1][1]};
    }
    return state[0] * atSync[0] + state[1] * atSync[1];
}

double FrameEvidence::logLikelihood(const PartValues &values) const
{
    if (assumptions.empty())
        return 0.0;
    constexpr double least = 1e-300; // what is less likely is as impossible
    const double most = std::max(assumptions.front().logWeight, assumptions.back().logWeight);
    double sum = 0.0;
    for (const BitsBetween &between : assumptions)
        sum += std::exp(between.logWeight - most) * likelihood(values, between);
    return most + std::log(std::max(least, sum));
}

ResidualVariance residualVariance(const std::vector<float> &levels, const FrameGrid &grid)
{
    double fit = 0.0;
    double squares = 0.0;
    double count = 0.0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (levels[i] == 0.0F || grid.halves[i] == 0.0F)
            continue;
        fit += static_cast<double>(levels[i] * grid.halves[i]);
        squares += std::pow(static_cast<double>(grid.halves[i]), 2.0);
        count += 1.0;
    }
    if (count < 1.0)
        return {};
    const double whole = squares / count - std::pow(fit / count, 2.0);
    const double added = repeatedError(grid, levels) - whole;
    return {whole, std::clamp(added / grid.frames, 0.0, whole)};
}

Evidence evidenceOf(const FrameGrid &grid, const std::vector<float> &levels)
{
    const double unexplained = residualVariance(levels, grid).total;
    const Polarities polarities = possiblePolarities(grid).front();
    const bool steady = isSteady(grid);
    Evidence evidence(static_cast<std::size_t>(grid.frames));
    for (int frame = firstWholeFrame(grid); frame < grid.frames; ++frame) {
        const auto index = static_cast<std::size_t>(frame);
        const Strength strength = strengthAt(grid, frame, steady);
        const double noise = std::max(noiseBeside(strength.amplitude), unexplained);
        const double scale = strength.amplitude / noise / strength.rms;
        const float *decided = levels.empty() ? nullptr : levels.data() + index * halvesPerFrame;
        evidence[index] = FrameEvidence(grid.frame(frame), decided, scale,
                                        polarityTrust * static_cast<double>(polarities.atStart[index]));
    }
    return evidence;
}

} // namespace ltcreader
