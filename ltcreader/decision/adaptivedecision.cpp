// SPDX-License-Identifier: MIT

// Averaging does not lessen errors that repeat in every frame. Two kinds of them follow from a decision: what
// the front end's filter carries from one half bit into others is known once the levels are, and what other
// filters do is learnt from them. Either way a decision can make itself look true. So it must be found again
// by a second round, and what it gains is believed in part.

#include "ltcreader/decision/adaptivedecision.h"

#include "ltcreader/decision/remodulator.h"
#include "ltcreader/frontend/decisiondirected.h"
#include "ltcreader/sync/interference.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace ltcreader
{
namespace
{

constexpr double adaptableAmplitude = 0.25; // below it too many levels are wrong to learn from
constexpr double adaptedTrust = 0.67;       // in margins that learning brought about
constexpr double unconfirmedTrust = 0.5;    // in margins that it does not confirm
constexpr double clearRepetition = 1.35;    // of errors: three standard deviations above chance
constexpr int rounds = 5;                   // of removing interference until a decision is found again

/// Decides on one grid after another of a recording.
class Decider
{
public:
    Decider(Decide decide, double measuredRate, const std::optional<timecode::Rate> &wanted)
        : decide(decide), measuredRate(measuredRate), wanted(wanted)
    {
    }

    std::optional<LabelDecision> on(const FrameGrid &grid) const
    {
        auto decision = decide(grid, measuredRate);
        if (decision && wanted && wanted->base != decision->rate.base)
            decision.reset();
        return decision;
    }

private:
    Decide decide;
    double measuredRate;
    const std::optional<timecode::Rate> &wanted;
};

bool isDoubtful(const LabelDecision &decision)
{
    return decision.repetition > 1.0 && decision.amplitude >= adaptableAmplitude &&
           decision.margin < sufficientMargin;
}

/// Whether the repeated errors of \a decision may be the interference of the front end. What equalises lets
/// little interfere, since the recording brings what it takes away.
bool mayBeInterference(const LabelDecision &decision, const Candidate &candidate)
{
    return isDoubtful(decision) && decision.steadyBits && decision.repetition > clearRepetition &&
           candidate.frontEnd == FrontEnd::Whitened;
}

/// How much of the margin of \a decision on \a grid is left when the interference that a rival would bring
/// about is removed for that rival, too: the worst share of the nearest ones.
double shareOfMargin(const LabelDecision &decision, const FrameGrid &grid, const Interference &interference)
{
    std::vector<std::vector<float>> rivals;
    for (const Hypothesis &rival : decision.rivals)
        rivals.push_back(remodulate(grid, decision.polarities, rival));
    const std::vector<double> sharesLeft = interference.sharesLeft(decision.levels, rivals);
    double least = 1.0;
    for (std::size_t rival = 0; rival < rivals.size(); ++rival) {
        double lead = 0.0; // of the decision's fit
        double squares = 0.0;
        for (std::size_t half = 0; half < decision.levels.size(); ++half) {
            const auto difference = static_cast<double>(decision.levels[half] - rivals[rival][half]);
            lead += difference * static_cast<double>(grid.halves[half]);
            squares += grid.halves[half] != 0.0F ? difference * difference : 0.0;
        }
        // The rival's fit would gain half the amplitude times the energy that the filter takes.
        const double gained = 0.5 * decision.amplitude * squares * (1.0 - sharesLeft[rival]);
        if (lead > 0.0)
            least = std::min(least, 1.0 - gained / lead);
    }
    return least;
}

/// What is decided without the front end's interference, once two rounds agree; none where no two do.
std::optional<AdaptiveDecision> withoutInterference(const Decider &decider, const Candidate &candidate,
                                                    const LabelDecision &first)
{
    const Interference interference(candidate);
    LabelDecision last = first;
    for (int round = 0; round < rounds; ++round) {
        const Candidate cleaned = interference.removed(last.levels);
        auto next = decider.on(cleaned.grid);
        if (!next)
            break;
        if (round > 0 && isSame(*next, last)) {
            next->margin *= shareOfMargin(*next, cleaned.grid, interference);
            return AdaptiveDecision{std::move(*next), interference.echoesRemoved(last.levels)};
        }
        last = std::move(*next);
    }
    return std::nullopt;
}

/// \a grid after the filter that brings its half bits nearest to \a levels.
FrameGrid equalised(FrameGrid grid, const std::vector<float> &levels)
{
    grid.halves = equaliseByDecision(grid.halves, levels);
    measureSyncs(grid);
    return grid;
}

/// What is decided behind a filter that has learnt from \a first; none where a second round, which learns
/// from that, decides otherwise.
std::optional<AdaptiveDecision> behindEqualiser(const Decider &decider, const Candidate &candidate,
                                                const LabelDecision &first)
{
    const auto second = decider.on(equalised(candidate.grid, first.levels));
    auto third = second ? decider.on(equalised(candidate.grid, second->levels)) : std::nullopt;
    if (!third || !isSame(*third, *second))
        return std::nullopt;
    third->margin = std::min(second->margin, third->margin);
    return AdaptiveDecision{std::move(*third), candidate};
}

} // namespace

std::optional<AdaptiveDecision> decideAdaptively(Decide decide, const Candidate &candidate,
                                                 const std::optional<timecode::Rate> &wanted)
{
    const Decider decider(decide, candidate.frameRate(), wanted);
    auto first = decider.on(candidate.grid);
    if (!first)
        return std::nullopt;
    AdaptiveDecision best{std::move(*first), candidate};
    const auto take = [&best](AdaptiveDecision other) {
        other.decision.margin *= adaptedTrust;
        if (other.decision.margin > best.decision.margin)
            best = std::move(other);
    };
    if (mayBeInterference(best.decision, candidate)) {
        const double firstAmplitude = best.decision.amplitude;
        auto other = withoutInterference(decider, candidate, best.decision);
        const bool confirmed = other && isSame(other->decision, best.decision);
        best.decision.margin = confirmed ? std::min(best.decision.margin, other->decision.margin) : 0.0;
        // Without what really interferes, levels are clearer.
        if (other && other->decision.amplitude > firstAmplitude)
            take(std::move(*other));
    }
    if (isDoubtful(best.decision)) {
        if (auto other = behindEqualiser(decider, candidate, best.decision))
            take(std::move(*other));
        else
            best.decision.margin *= unconfirmedTrust;
    }
    return best;
}

} // namespace ltcreader
