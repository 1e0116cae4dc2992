// SPDX-License-Identifier: MIT

// From sound to an answer when single bits cannot be read: front ends, the clock, half bits, frames,
// the decision, and then back to the sound with the square wave that was decided for.

#include "ltcreader/decoder/jointreader.h"

#include "ltcreader/decision/adaptivedecision.h"
#include "ltcreader/decision/digitdecision.h"
#include "ltcreader/frame/rateclass.h"
#include "ltcreader/sync/earlylatetiming.h"
#include "ltcreader/verification/beginning.h"
#include "ltcreader/verification/linecheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr std::size_t decidedCandidates = 6;
constexpr double contradictingMargin = 0.3; // of the best reading's

// What a decision must reach. Wrong ones stay well below; what is lost is the last decibel.
constexpr double leastMargin = 11.5; // one wrong answer in a hundred thousand
constexpr double leastSignificance = 14.0;
constexpr double leastShareOfSync = 0.5; // a waveform that is all sync word is none
constexpr double digitsSyncScore = 7.0;  // deep in noise digits alone prove nothing

/// A way of deciding on a grid whose frames follow each other at a measured rate [frames/s].
struct Way {
    Decide decide;
    double leastSyncScore; // of what it is tried on
    bool isLast;
};

constexpr std::array<Way, 2> ways{Way{decideTimecode, 0.0, false},
                                  Way{decideByDigits, digitsSyncScore, true}};

/// A decision, the way it was made and what it was made on.
struct Decided {
    const Way *way;
    Candidate found;     ///< as it was found
    Candidate candidate; ///< without distortion, as far as that was recognised
    LabelDecision decision;

    /// [frames] since midnight at the recording's first sample, as far as the clock shows.
    double startCount() const
    {
        const double frameZero = candidate.clock.position(0.5 * candidate.grid.firstHalf);
        return static_cast<double>(decision.count) - frameZero / (bitsPerFrame * candidate.clock.bitLength);
    }
};

/// Decides on \a candidate in \a way; none where nothing can be decided or the base is not \a wanted.
std::optional<Decided> decide(const Way &way, const Candidate &candidate,
                              const std::optional<timecode::Rate> &wanted)
{
    auto adaptive = decideAdaptively(way.decide, candidate, wanted);
    if (!adaptive)
        return std::nullopt;
    return Decided{&way, candidate, std::move(adaptive->candidate), std::move(adaptive->decision)};
}

/// \a decided again, where its own levels show that bits lie. The same label is surer then, unless the speed
/// wanders; otherwise none.
std::optional<Decided> decideAgain(const Decided &decided, const std::optional<timecode::Rate> &wanted)
{
    const LabelDecision &first = decided.decision;
    auto again =
        decide(*decided.way, retimed(decided.found, measureTiming(decided.candidate, first.levels)), wanted);
    if (!again || !isSame(again->decision, first) || again->decision.margin <= first.margin)
        return std::nullopt;
    return again;
}

bool isBelievable(const LabelDecision &decision)
{
    return decision.margin >= leastMargin && decision.significance >= leastSignificance &&
           decision.amplitude >= leastShareOfSync * decision.syncAmplitude &&
           decision.syncAmplitude >= leastShareOfSync * decision.amplitude;
}

/// Whether two decisions on the same recording cannot both be true.
bool contradict(const Decided &a, const Decided &b)
{
    return a.decision.rate.base != b.decision.rate.base || std::abs(a.startCount() - b.startCount()) > 0.5;
}

/// The decision with the greatest margin; null when there is none. What was changed to suit a label must also
/// be clearer than all that contradict it.
Decided *likeliest(std::vector<Decided> &all)
{
    Decided *best = nullptr;
    for (Decided &decided : all) {
        const auto isClearer = [&decided](const Decided &other) {
            return other.decision.significance > decided.decision.significance && contradict(other, decided);
        };
        if (decided.candidate.grid.isDecisionDirected && std::any_of(all.begin(), all.end(), isClearer))
            continue;
        if (!best || decided.decision.margin > best->decision.margin)
            best = &decided;
    }
    return best;
}

/// What frames of \a samples say against \a decided.
Doubt doubtAboutFrames(const Decided &decided, const std::vector<float> &samples, int sampleRate)
{
    const Candidate &candidate = decided.candidate;
    const LabelDecision &decision = decided.decision;
    if (isPrecededByAnother(candidate.grid, *candidate.sound, candidate.clock))
        return Doubt::Jump;
    return doubtAboutLine({decision.rate, decision.count}, candidate.grid,
                          decision.steadyBits ? decision.levels : std::vector<float>(), samples,
                          bitsPerFrame * candidate.clock.bitLength * sampleRate /
                              candidate.sound->sampleRate);
}

/// What keeps \a best of \a all from being an answer: its own margin, that of others which contradict it, or
/// the frames of \a samples. \a first: what was decided at first where \a best was decided again.
Doubt doubtAbout(const Decided &best, const std::optional<Decided> &first, const std::vector<Decided> &all,
                 const std::vector<float> &samples, int sampleRate)
{
    if (!isBelievable(best.decision))
        return Doubt::TooNoisy;
    const auto speaksAgainst = [&best](const Decided &other) {
        return other.decision.margin > contradictingMargin * best.decision.margin && contradict(other, best);
    };
    if (std::any_of(all.begin(), all.end(), speaksAgainst))
        return Doubt::TwoTimecodes;
    const Doubt doubt = doubtAboutFrames(best, samples, sampleRate);
    // A straight clock does not follow into other timecode at the beginning: the first one may.
    return doubt == Doubt::None && first ? doubtAboutFrames(*first, samples, sampleRate) : doubt;
}

/// RMS of the square wave in \a samples: the mean of its half bits, each with the sign that was decided for.
double levelOf(const std::vector<float> &samples, const JointReading &reading, double frameZero)
{
    const double halfLength = reading.frameLength / halvesPerFrame;
    double sum = 0.0;
    double count = 0.0;
    for (std::size_t half = 0; half < reading.decision.levels.size(); ++half) {
        const double begin = frameZero + static_cast<double>(half) * halfLength;
        const auto from = static_cast<std::size_t>(std::max(0.0, std::ceil(begin)));
        const auto to = static_cast<std::size_t>(std::max(0.0, std::ceil(begin + halfLength)));
        for (std::size_t i = from; i < std::min(to, samples.size()); ++i) {
            sum += static_cast<double>(reading.decision.levels[half]) * static_cast<double>(samples[i]);
            count += std::abs(static_cast<double>(reading.decision.levels[half]));
        }
    }
    return std::abs(sum) / std::max(1.0, count);
}

bool startsLow(const std::vector<float> &levels)
{
    float sum = 0.0F;
    for (std::size_t i = 0; i < levels.size(); i += halvesPerFrame)
        sum += levels[i];
    return sum < 0.0F;
}

/// The reading that follows from \a decided; none where its rate is not \a wanted.
std::optional<JointReading> readingOf(const Decided &decided, const std::vector<float> &samples,
                                      int sampleRate, const std::optional<timecode::Rate> &wanted)
{
    const Candidate &candidate = decided.candidate;
    const BitTiming timing = measureTiming(candidate, decided.decision.levels);
    const double samplesPerFiltered = sampleRate / candidate.sound->sampleRate;
    const double frameZero =
        (timing.start + timing.bitLength * 0.5 * candidate.grid.firstHalf) * samplesPerFiltered;
    JointReading reading;
    reading.decision = decided.decision;
    reading.frameLength = timing.bitLength * bitsPerFrame * samplesPerFiltered;
    reading.lengthDeviation = timing.bitLengthDeviation * bitsPerFrame * samplesPerFiltered;
    reading.startCount = static_cast<double>(reading.decision.count) - frameZero / reading.frameLength;
    reading.rate = reading.decision.rate;
    if (!setRateClass(reading, sampleRate, wanted))
        return std::nullopt;
    reading.level = levelOf(samples, reading, frameZero);
    reading.frames = candidate.grid.frames;
    reading.bits = reading.decision.bits;
    reading.inverted = startsLow(reading.decision.levels);
    return reading;
}

/// What the beginning of \a samples and the speed say against \a reading, which \a grid gave.
Doubt doubtAboutReading(const JointReading &reading, const FrameGrid &grid, const std::vector<float> &samples,
                        int sampleRate, const std::optional<timecode::Rate> &wanted)
{
    constexpr int secondsRead = 0; // the frame number is what was decided, not what was read
    return isMaskedBefore(grid, samples, reading.frameLength)
               ? Doubt::TooNoisy
               : doubtAboutSpeed(reading, secondsRead, sampleRate, wanted);
}

} // namespace

JointOutcome readJointly(const std::vector<Candidate> &candidates, const std::vector<float> &samples,
                         int sampleRate, const std::optional<timecode::Rate> &wanted)
{
    JointOutcome outcome;
    const std::span<const Candidate> tried(candidates.data(), std::min(decidedCandidates, candidates.size()));
    std::vector<Decided> all;
    for (const Way &way : ways) {
        for (const Candidate &candidate : tried) {
            if (candidate.grid.score < way.leastSyncScore)
                continue;
            auto decided = decide(way, candidate, wanted);
            if (!decided)
                continue;
            all.push_back(std::move(*decided));
            if (all.back().decision.margin > sufficientMargin)
                break;
        }
        Decided *best = likeliest(all);
        if (!best)
            continue;
        std::optional<Decided> first; // where the decision was made again
        if (best->way == &way && best->decision.margin < sufficientMargin) {
            if (auto again = decideAgain(*best, wanted))
                first = std::exchange(*best, std::move(*again));
        }
        outcome.doubt = doubtAbout(*best, first, all, samples, sampleRate);
        if (outcome.doubt == Doubt::TooNoisy && !way.isLast)
            continue;
        outcome.likeliest = readingOf(*best, samples, sampleRate, wanted);
        if (!outcome.likeliest) {
            outcome.doubt = Doubt::NoTimecode; // of the rate that is asked for
            break;
        }
        if (outcome.doubt == Doubt::None)
            outcome.doubt =
                doubtAboutReading(*outcome.likeliest, best->candidate.grid, samples, sampleRate, wanted);
        break;
    }
    return outcome;
}

} // namespace ltcreader
