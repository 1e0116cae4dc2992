// SPDX-License-Identifier: MIT

// The road from sound to an answer when single bits cannot be told: front ends, the clock, half bits, frames,
// the decision, and then back to the sound with the square wave that was decided for: where it fits best in
// each part of the recording gives the speed and the moment of the first sample to a fraction of a sample.

#include "ltcreader/jointreader.h"

#include "ltcreader/adaptation.h"
#include "ltcreader/digitdecision.h"
#include "ltcreader/equaliser.h"
#include "ltcreader/framechain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr std::size_t clocksPerFrontEnd = 3;
constexpr double leastSyncScore = 5.0; // chance reaches 3.5 among 160 places
constexpr std::size_t decidedCandidates = 4;
constexpr double plainMargin = 60.0;        // log-likelihood beyond which no other way of reading is tried
constexpr double contradictingMargin = 0.3; // of the best reading's
constexpr double shortest = 0.1;            // [s] two frames
constexpr double adaptedTrust = 0.67;       // in margins that a learning filter brought about
constexpr double adaptableAmplitude = 0.25; // below it too many levels are wrong to learn from

// What a reading must reach. Chosen with the benchmark: wrong readings stay well below, what is lost is the
// last decibel.
constexpr double leastMargin = 10.0;
constexpr double leastSignificance = 14.0;
constexpr double leastShareOfSync = 0.5; // a waveform that is all sync word is none

constexpr int timingRounds = 3;
constexpr double timingShift = 0.2; // [bits] to each side, on the flank of the half bits' correlation
constexpr int framesPerPart = 5;    // whose timing is measured together

struct Candidate {
    FrontEnd frontEnd;
    std::shared_ptr<const Conditioned> sound;
    Clock clock;
    FrameGrid grid;
};

/// Fit of the decided levels with the half bits summed \a shift [bits] late, for each part of the recording.
std::vector<double> fitsOfParts(const Candidate &candidate, const std::vector<float> &levels, double shift)
{
    const HalfBits halfBits = sumHalfBits(*candidate.sound, candidate.clock, shift);
    std::vector<double> fits(
        static_cast<std::size_t>((candidate.grid.frames + framesPerPart - 1) / framesPerPart));
    const int count = static_cast<int>(halfBits.values.size());
    for (int half = 0; half < candidate.grid.frames * halvesPerFrame; ++half) {
        const int place = half + candidate.grid.firstHalf;
        if (place < 0 || place >= count)
            continue;
        fits[static_cast<std::size_t>(half / (framesPerPart * halvesPerFrame))] +=
            static_cast<double>(levels[static_cast<std::size_t>(half)]) *
            static_cast<double>(halfBits.values[static_cast<std::size_t>(place)]);
    }
    return fits;
}

/// A straight line of bit number against time, weighted.
struct Line {
    double start = 0.0; // [conditioned samples] of bit 0
    double slope = 0.0; // [conditioned samples] per bit
};

/// Moves the clock onto the decided levels: a line through the moments at which they fit best.
Line measureTiming(const Candidate &candidate, const std::vector<float> &levels)
{
    const std::vector<double> early = fitsOfParts(candidate, levels, -timingShift);
    const std::vector<double> exact = fitsOfParts(candidate, levels, 0.0);
    const std::vector<double> late = fitsOfParts(candidate, levels, timingShift);
    double earlySum = 0.0;
    double exactSum = 0.0;
    double lateSum = 0.0;
    for (std::size_t part = 0; part < exact.size(); ++part) {
        earlySum += early[part];
        exactSum += exact[part];
        lateSum += late[part];
    }
    const double curve = std::max(2.0 * exactSum - earlySum - lateSum, 0.05 * std::abs(exactSum) + 1e-9);
    const double partBits = framesPerPart * bitsPerFrame;
    double weights = 0.0;
    double meanBit = 0.0;
    double meanTime = 0.0;
    std::vector<std::array<double, 3>> points; // weight, bit, time
    for (std::size_t part = 0; part < exact.size(); ++part) {
        const double weight = std::max(0.0, exact[part]) / (std::abs(exactSum) + 1e-9);
        if (weight <= 0.0)
            continue;
        const double share = exact[part] / exactSum;
        const double lateness = std::clamp(timingShift * (late[part] - early[part]) / (2.0 * curve * share),
                                           -timingShift, timingShift);
        const double first = 0.5 * candidate.grid.firstHalf + static_cast<double>(part) * partBits;
        const double bit = first + 0.5 * partBits;
        const double time = candidate.clock.position(bit + lateness);
        points.push_back({weight, bit, time});
        weights += weight;
        meanBit += weight * bit;
        meanTime += weight * time;
    }
    Line line{candidate.clock.position(0.0), candidate.clock.bitLength};
    if (weights <= 0.0)
        return line;
    meanBit /= weights;
    meanTime /= weights;
    double products = 0.0;
    double squares = 0.0;
    for (const auto &[weight, bit, time] : points) {
        products += weight * (bit - meanBit) * (time - meanTime);
        squares += weight * (bit - meanBit) * (bit - meanBit);
    }
    if (squares > 0.0)
        line.slope = products / squares;
    line.start = meanTime - line.slope * meanBit;
    return line;
}

/// Cuts \a sound by \a clock in the ways that suit the front end, and keeps what shows sync words.
void addCandidates(const Conditioner &conditioner, FrontEnd frontEnd,
                   std::shared_ptr<const Conditioned> sound, const Clock &clock,
                   std::vector<Candidate> &candidates)
{
    const auto add = [&](const HalfBits &halfBits) {
        Candidate candidate{frontEnd, sound, clock, findFrames(halfBits)};
        if (candidate.grid.score >= leastSyncScore)
            candidates.push_back(std::move(candidate));
    };
    if (frontEnd == FrontEnd::Whitened) {
        const double frameRate = sound->sampleRate / (bitsPerFrame * clock.bitLength);
        sound = std::make_shared<Conditioned>(conditioner.prepare(frontEnd, frameRate));
        const HalfBits halfBits = sumHalfBits(*sound, clock, 0.0);
        add(halfBits);
        add(equalise(halfBits, *sound, 0.5 * clock.bitLength / sound->sampleRate));
    } else {
        add(sumHalfBits(*sound, clock, 0.0));
    }
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

using Decide = std::optional<JointDecision> (*)(const FrameGrid &grid, double measuredRate,
                                                const std::optional<FrameRate> &wanted);

/// Decides, and where errors repeat decides again on what a filter makes of the frames that the decision
/// tells. The filter learns again from the second decision; what is not as sure in both of them is not
/// believed.
std::optional<JointDecision> decideAdaptively(Decide decideOn, const FrameGrid &grid, double measuredRate,
                                              const std::optional<FrameRate> &wanted)
{
    auto first = decideOn(grid, measuredRate, wanted);
    if (!first || !first->errorRepeats || first->amplitude < adaptableAmplitude)
        return first;
    const auto second = decideOn(adapted(grid, first->levels), measuredRate, wanted);
    if (!second)
        return first;
    auto third = decideOn(adapted(grid, second->levels), measuredRate, wanted);
    if (!third || third->count != second->count)
        return first;
    third->margin = adaptedTrust * std::min(second->margin, third->margin);
    return third->margin > first->margin ? third : first;
}

bool isBelievable(const JointReading &reading)
{
    const JointDecision &decision = reading.decision;
    return decision.margin >= leastMargin && decision.significance >= leastSignificance &&
           decision.amplitude >= leastShareOfSync * decision.syncAmplitude &&
           decision.syncAmplitude >= leastShareOfSync * decision.amplitude;
}

/// Whether two readings of the same recording cannot both be true.
bool contradict(const JointReading &a, const JointReading &b)
{
    return a.rate.base != b.rate.base || std::abs(a.startCount - b.startCount) > 0.5;
}

std::optional<JointReading> decide(Decide decideOn, const Candidate &candidate,
                                   const std::vector<float> &samples, int sampleRate,
                                   const std::optional<FrameRate> &wanted)
{
    const double measuredRate = candidate.sound->sampleRate / (bitsPerFrame * candidate.clock.bitLength);
    const auto decision = decideAdaptively(decideOn, candidate.grid, measuredRate, wanted);
    if (!decision)
        return std::nullopt;
    JointReading reading;
    reading.decision = *decision;
    reading.syncScore = candidate.grid.score;
    reading.clockStrength = candidate.clock.strength;
    reading.frontEnd = candidate.frontEnd;
    Candidate refined = candidate;
    Line line;
    for (int round = 0; round < timingRounds; ++round) {
        line = measureTiming(refined, decision->levels);
        refined.clock.bitLength = line.slope;
        refined.clock.knots.assign(refined.clock.knots.size(), line.start);
    }
    const double samplesPerConditioned = sampleRate / candidate.sound->sampleRate;
    reading.frameLength = line.slope * bitsPerFrame * samplesPerConditioned;
    const double frameZero =
        (line.start + line.slope * 0.5 * candidate.grid.firstHalf) * samplesPerConditioned;
    reading.startCount = static_cast<double>(decision->count) - frameZero / reading.frameLength;
    reading.rate = rateBySpeed(decision->rate, reading.frameLength, sampleRate, wanted);
    if (wanted && (wanted->base != reading.rate.base || wanted->ntsc != reading.rate.ntsc))
        return std::nullopt;
    reading.level = levelOf(samples, reading, frameZero);
    reading.frames = candidate.grid.frames;
    reading.inverted = startsLow(decision->levels);
    return reading;
}

/// The reading with the greatest margin, which must be much greater than those of readings that contradict
/// it.
std::optional<JointReading> surest(const std::vector<JointReading> &readings)
{
    const auto best =
        std::max_element(readings.begin(), readings.end(), [](const JointReading &a, const JointReading &b) {
            return a.decision.margin < b.decision.margin;
        });
    if (best == readings.end())
        return std::nullopt;
    const bool doubted = std::any_of(readings.begin(), readings.end(), [best](const JointReading &other) {
        return other.decision.margin > contradictingMargin * best->decision.margin &&
               contradict(other, *best);
    });
    return doubted ? std::nullopt : std::optional(*best);
}

} // namespace

std::optional<JointReading> readJointly(const std::vector<float> &samples, int sampleRate,
                                        const std::optional<FrameRate> &wanted)
{
    if (static_cast<double>(samples.size()) < shortest * sampleRate)
        return std::nullopt;
    const Conditioner conditioner(samples, sampleRate);
    std::vector<Candidate> candidates;
    for (const FrontEnd frontEnd : {FrontEnd::Whitened, FrontEnd::Flat, FrontEnd::Restored}) {
        const auto sound = std::make_shared<Conditioned>(conditioner.prepare(frontEnd));
        for (const Clock &clock : findClocks(*sound, clocksPerFrontEnd))
            addCandidates(conditioner, frontEnd, sound, clock, candidates);
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate &a, const Candidate &b) { return a.grid.score > b.grid.score; });
    std::vector<JointReading> readings;
    for (const Decide decideOn : {decideTimecode, decideByDigits}) {
        for (std::size_t i = 0; i < std::min(decidedCandidates, candidates.size()); ++i) {
            auto reading = decide(decideOn, candidates[i], samples, sampleRate, wanted);
            if (!reading)
                continue;
            readings.push_back(std::move(*reading));
            if (readings.back().decision.margin > plainMargin)
                break;
        }
        const auto best = surest(readings);
        if (best && isBelievable(*best))
            return best;
    }
    return std::nullopt;
}

} // namespace ltcreader
