// SPDX-License-Identifier: MIT

// All frames of a recording say one thing: which frame of which day the first one is. So they are asked
// together.
//
// A hypothesis is a way of counting (24, 25, 30), a number of the first frame within its second, the second
// within its minute, and, where the minute changes within the recording, the minute too (with drop-frame
// skips, and the hour where that changes). All digits that move are then known for every frame; what stands
// still, user bits and flags included, is known to stand still. Frames are added up accordingly, and the
// trellis finds what stands still and how well the whole fits. The first step ranks the numberings with the
// seconds left open; the second tries every second on the best of them.
//
// The answer's margin is the difference in log-likelihood to the best timecode that is another one, among the
// other hypotheses and with each digit that stands still forced to another value.

#include "ltcreader/decision/labeldecision.h"

#include "ltcreader/decision/coherentaverage.h"
#include "ltcreader/decision/hypothesisfit.h"
#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/remodulator.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr std::size_t triedNumberings = 12; // those that fit best, on which every second is tried
constexpr std::size_t rivalsKept = 16;
constexpr double smallestAmplitude = 0.01; // or the speed alone would decide where nothing fits

/// The frames added up under one numbering.
struct NumberedAverage {
    FrameNumbering numbering;
    int correctionBit;
    CoherentAverage average;
    float fit;
};

using NumberedAverages = std::vector<NumberedAverage>;

/// The numberings that fit \a grid best.
NumberedAverages bestNumberings(const FrameGrid &grid, const Polarities &polarities)
{
    NumberedAverages averages;
    for (const FrameNumbering &numbering : possibleNumberings(grid.frames)) {
        for (const int correctionBit : correctionBits) {
            CoherentAverage average = averageFrames(grid, polarities, numbering, correctionBit);
            const float fit = fitOfNumbering(average, correctionBit);
            averages.push_back({numbering, correctionBit, std::move(average), fit});
        }
    }
    const std::size_t kept = std::min(triedNumberings, averages.size());
    std::partial_sort(averages.begin(), averages.begin() + static_cast<std::ptrdiff_t>(kept), averages.end(),
                      [](const NumberedAverage &a, const NumberedAverage &b) { return a.fit > b.fit; });
    averages.resize(kept);
    return averages;
}

std::vector<Hypothesis> evaluatedHypotheses(const NumberedAverages &averages, int frames)
{
    std::vector<Hypothesis> hypotheses;
    for (const NumberedAverage &numbered : averages) {
        for (Hypothesis hypothesis : hypothesesWith(numbered.numbering, frames)) {
            hypothesis.correctionBit = numbered.correctionBit;
            evaluate(numbered.average, hypothesis);
            hypotheses.push_back(hypothesis);
        }
    }
    return hypotheses;
}

/// Number of half bits of data that \a grid holds.
double usedHalves(const FrameGrid &grid)
{
    const auto used =
        std::count_if(grid.halves.begin(), grid.halves.end(), [](float half) { return half != 0.0F; });
    // Neither the sync word nor the phase correction bit takes part in the fit.
    return std::max(1.0, static_cast<double>(used) * (dataHalves - 2.0) / halvesPerFrame);
}

/// Log-likelihood that the best fit is worth for each unit of it.
double likelihoodPerFit(const std::vector<Hypothesis> &hypotheses, double halves)
{
    const float most =
        std::max_element(hypotheses.begin(), hypotheses.end(), [](const Hypothesis &a, const Hypothesis &b) {
            return a.fit < b.fit;
        })->fit;
    const double amplitude = std::clamp(static_cast<double>(most) / halves, smallestAmplitude, 1.0);
    return amplitude / noiseBeside(amplitude);
}

/// Those of \a rivals that fit best.
std::vector<Hypothesis> nearest(std::vector<Hypothesis> rivals)
{
    const std::size_t kept = std::min(rivalsKept, rivals.size());
    std::partial_sort(rivals.begin(), rivals.begin() + static_cast<std::ptrdiff_t>(kept), rivals.end(),
                      [](const Hypothesis &a, const Hypothesis &b) { return a.fit > b.fit; });
    rivals.resize(kept);
    return rivals;
}

/// A decision under one assumption about polarities.
struct Assumed {
    LabelDecision decision;
    double fit;    ///< with that of the sync words
    double perFit; ///< log-likelihood that each unit of it is worth
};

/// Decides on \a grid, whose frames follow each other at \a measuredRate [frames/s] and have \a polarities.
std::optional<Assumed> decideWith(const Polarities &polarities, const FrameGrid &grid, double measuredRate)
{
    const NumberedAverages averages = bestNumberings(grid, polarities);
    const std::vector<Hypothesis> hypotheses = evaluatedHypotheses(averages, grid.frames);
    if (hypotheses.empty())
        return std::nullopt;
    const double halves = usedHalves(grid);
    const Hypothesis &best = bestOf(hypotheses, likelihoodPerFit(hypotheses, halves), measuredRate);
    auto decision = decisionFor(best, grid.frames);
    if (!decision)
        return std::nullopt;
    const auto evaluateAgain = [&](Hypothesis &other) {
        evaluate(averageFrames(grid, polarities, other.numbering, other.correctionBit), other);
    };
    decision->amplitude = static_cast<double>(best.fit) / halves;
    decision->significance = static_cast<double>(best.fit) / std::sqrt(halves);
    decision->syncAmplitude = polarities.amplitude;
    decision->steadyBits = true;
    decision->levels = remodulate(grid, polarities, best);
    const double unexplained = noiseBeside(decision->amplitude);
    const double repeated = repeatedError(grid, decision->levels);
    decision->repetition = repeated / unexplained;
    // From fit to log-likelihood, with the greater of both kinds of noise where the nearest labels differ.
    const double correlated = 1.0 + std::max(0.0, boundaryCorrelation(grid, decision->levels));
    const double perFit = std::min(1.0, decision->amplitude) / (correlated * std::max(unexplained, repeated));
    std::vector<Hypothesis> rivals = rivalsOf(best, hypotheses, grid.frames, evaluateAgain);
    decision->margin = marginOf(best, rivals, perFit, measuredRate);
    decision->rivals = nearest(std::move(rivals));
    decision->polarities = polarities;
    return Assumed{std::move(*decision), static_cast<double>(best.fit) + polarities.syncFit, perFit};
}

} // namespace

bool isSame(const LabelDecision &a, const LabelDecision &b)
{
    return a.count == b.count && a.rate.base == b.rate.base;
}

std::optional<LabelDecision> decisionFor(const Hypothesis &best, int frames)
{
    LabelDecision decision;
    decision.rate.base = best.numbering.base;
    decision.bits = best.bits | static_cast<FrameBits>(best.numbering.first % 10) << field::frameUnits.first |
                    static_cast<FrameBits>(best.numbering.first / 10) << field::frameTens.first;
    decision.rate.dropFrame = best.numbering.base == 30 && fieldValue(decision.bits, field::dropFrame) != 0;
    decision.rate.ntsc = decision.rate.dropFrame;
    const auto label = labelOf(decision.bits);
    if (!label)
        return std::nullopt;
    if (!isLabel(*label, decision.rate)) {
        // Only the flag can be wrong here, or the label is.
        decision.rate.dropFrame = false;
        decision.rate.ntsc = false;
    }
    // Counted from the middle: at the ends ways of counting may differ where hardly anything of a frame is
    // there.
    const int middle = frames / 2;
    const auto [second, number] = placeOf(best.numbering, middle);
    const int minutes = best.minute < 0 ? 0 : (best.second + second) / 60;
    const int hours = best.hour < 0 ? 0 : (label->minutes + minutes) / 60;
    const timecode::Label inMiddle{(label->hours + hours) % 24, (label->minutes + minutes) % 60,
                                   (best.second + second) % 60, number};
    decision.count = frameCount(inMiddle, decision.rate) - middle;
    return decision;
}

std::optional<LabelDecision> decideTimecode(const FrameGrid &grid, double measuredRate)
{
    if (grid.frames < 1)
        return std::nullopt;
    std::optional<Assumed> best;
    for (const Polarities &polarities : possiblePolarities(grid)) {
        auto other = decideWith(polarities, grid, measuredRate);
        if (other && best) {
            const double lead = std::min(best->perFit, other->perFit) * (other->fit - best->fit);
            if (lead > 0.0)
                std::swap(best, other);
            if (!isSame(best->decision, other->decision))
                best->decision.margin = std::min(best->decision.margin, std::abs(lead));
        } else if (other) {
            best = std::move(other);
        }
    }
    return best ? std::optional(std::move(best->decision)) : std::nullopt;
}

} // namespace ltcreader
