// SPDX-License-Identifier: MIT

// A decision adds up all frames, on the assumption that one line of labels runs through all of them and that
// user bits stand still. Both are checked here, frame by frame: how likely the half bits of each digit are
// for each value, whichever polarity it begins with. The sync word of a frame and its neighbours gives the
// amplitude: where timecode pauses or fades there is no evidence for anything. Log-likelihoods of different
// frames add up, so those of an alternative against the line, summed from the recording's beginning or to its
// end, show where labels jump.

#include "ltcreader/verification/linecheck.h"

#include "ltcreader/decision/framefold.h"
#include "ltcreader/decision/levels.h"
#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/trellis.h"
#include "ltcreader/frame/digits.h"
#include "ltcreader/frontend/conditioner.h"
#include "ltcreader/sync/halfbits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace ltcreader
{
namespace
{

// [log-likelihood ratios]
constexpr double contradiction = 3.0; // for another label in the whole recording
constexpr double otherMotion = -5.0;  // for labels that do not count up, which are rare
constexpr double otherBeginning =
    -1.5;                           // for something else at the beginning, where the answer would be wrong
constexpr double proven = -1.5;     // below it the line runs from the beginning on
constexpr double otherEnd = 7.0;    // for something else at the end, which a chimera of two lines would have
constexpr double otherPhase = 5.5;  // [standard deviations] of sync words that lie elsewhere
constexpr double latestProof = 0.2; // share of the frames that may pass before
constexpr double quiet = 0.5;       // times the level of the rest: too little to hide other labels
constexpr int leastStretch = 2;     // [whole frames] a shorter line is not looked for
constexpr int neighbours = 2;       // to each side, whose sync words give a frame's amplitude
constexpr double polarityTrust = 0.9;  // in polarities that were decided: user bits may change
constexpr double mostAmplitude = 0.95; // beyond, what is left is the recording's doing, not noise
constexpr double steadyShare = 0.8; // of the amplitude, from which all sync words are taken for one polarity
constexpr double hiding = 1.2;      // times the level of the recording: sound enough to hide other labels
constexpr double shows = 0.6;       // of the amplitude of the frames behind: a frame's own sync word is there
constexpr double absent = 0.35;     // of the amplitude of the frames behind: no timecode yet

constexpr double impossible = -1e9; // a log-likelihood ratio
constexpr int secondsPerMinute = 60;

// What else it may be, as shares of the cases in which it is something else.
constexpr double shareOfNearLines = 0.5; // a line one or two frames, a second, a minute or an hour away
constexpr double shareOfOneDigit = 0.3;  // a line that differs in one digit
constexpr double shareOfAnyLine = 0.1;   // any other line
constexpr double shareOfMotions = 0.1;   // labels that do not count up

constexpr std::size_t partCount = 2 + digitCount;
constexpr std::array<BitField, partCount> parts{field::frameUnits,  field::frameTens,  field::dropFrame,
                                                field::secondUnits, field::secondTens, field::minuteUnits,
                                                field::minuteTens,  field::hourUnits,  field::hourTens};
enum Part : std::size_t {
    FrameUnitsPart,
    FrameTensPart,
    FlagPart,
    SecondUnitsPart,
    SecondTensPart,
    MinuteUnitsPart
};

using PartValues = std::array<int, partCount>;

PartValues valuesOf(const timecode::Label &label, bool dropFrame)
{
    return {label.frames % 10,  label.frames / 10,  dropFrame ? 1 : 0, label.seconds % 10, label.seconds / 10,
            label.minutes % 10, label.minutes / 10, label.hours % 10,  label.hours / 10};
}

/// For each frame, part and value the log-likelihood, up to what is common to all values.
using Evidence = std::vector<std::array<std::array<double, 16>, partCount>>;

/// How strong timecode is among the half bits of some frames.
struct Strength {
    double amplitude = 0.0; ///< of half bits of mean square 1, 0 to 1
    double rms = 1.0;       ///< of the half bits as they are
};

/// The strength in frames \a from to \a to - 1, as their sync words show it: \a steady where all have one
/// polarity.
Strength strengthOf(const FrameGrid &grid, int from, int to, bool steady)
{
    constexpr double halves = 2.0 * syncBits;
    double sum = 0.0;
    double squares = 0.0;
    double power = 0.0;
    double count = 0.0;
    for (int frame = std::max(0, from); frame < std::min(grid.frames, to); ++frame) {
        const auto sync = static_cast<double>(grid.syncs[static_cast<std::size_t>(frame)]);
        if (sync == 0.0)
            continue;
        sum += sync;
        squares += sync * sync;
        count += 1.0;
        for (int half = dataHalves; half < halvesPerFrame; ++half)
            power += std::pow(static_cast<double>(grid.frame(frame)[half]), 2.0) / halves;
    }
    if (count < 1.0 || !(power > 0.0))
        return {};
    const double rms = std::sqrt(power / count);
    const double noise = halves * power / count; // of the square of a sync word without timecode
    const double found = steady ? std::abs(sum) / count : std::sqrt(std::max(0.0, squares / count - noise));
    return {std::min(mostAmplitude, found / (halves * rms)), rms};
}

/// The strength at frame \a frame: that of both sides together, or of the weaker one where timecode begins or
/// ends.
Strength strengthAt(const FrameGrid &grid, int frame, bool steady)
{
    const Strength before = strengthOf(grid, frame - neighbours, frame + 1, steady);
    const Strength behind = strengthOf(grid, frame, frame + neighbours + 1, steady);
    if (before.amplitude < absent * behind.amplitude && frame > 0)
        return before;
    if (behind.amplitude < absent * before.amplitude)
        return behind;
    return strengthOf(grid, frame - neighbours, frame + neighbours + 1, steady);
}

bool isSteady(const FrameGrid &grid)
{
    return strengthOf(grid, 0, grid.frames, true).amplitude >
           steadyShare * strengthOf(grid, 0, grid.frames, false).amplitude;
}

/// The polarity in which \a part of frame \a frame begins, 1 high to -1 low, 0 where it is not known.
double polarityOf(const FrameGrid &grid, const Polarities &polarities, const std::vector<float> &levels,
                  int frame, std::size_t part)
{
    if (part == FrameUnitsPart)
        return polarityTrust * static_cast<double>(polarities.atStart[static_cast<std::size_t>(frame)]);
    if (levels.empty())
        return 0.0;
    const std::ptrdiff_t place = halvesOf(grid.frame(frame), parts[part].first) - grid.halves.data();
    return polarityTrust * static_cast<double>(levels[static_cast<std::size_t>(place)]);
}

/// What \a levels leave unexplained of \a grid, for each half bit.
struct Unexplained {
    double whole = 0.0;    ///< variance
    double repeated = 0.0; ///< the part of it that is the same in every frame
};

Unexplained unexplainedBy(const std::vector<float> &levels, const FrameGrid &grid)
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
    const double unexplained = unexplainedBy(levels, grid).whole;
    const Polarities polarities = findPolarities(grid);
    const bool steady = isSteady(grid);
    Evidence evidence(static_cast<std::size_t>(grid.frames));
    for (int frame = 0; frame < grid.frames; ++frame) {
        const auto index = static_cast<std::size_t>(frame);
        const Strength strength = strengthAt(grid, frame, steady);
        const double noise = std::max(noiseBeside(strength.amplitude), unexplained);
        const double scale = strength.amplitude / noise / strength.rms;
        for (std::size_t part = 0; part < partCount; ++part) {
            const double polarity = polarityOf(grid, polarities, levels, frame, part);
            for (int value = 0; value < 1 << parts[part].width; ++value) {
                const float fit =
                    resemblance(halvesOf(grid.frame(frame), parts[part].first), value, parts[part].width);
                evidence[index][part][static_cast<std::size_t>(value)] =
                    logCosh(scale * static_cast<double>(fit), polarity);
            }
        }
    }
    return evidence;
}

/// The log-likelihood ratio of an alternative against the line in each frame.
using Gains = std::vector<double>;

/// Alternatives of one kind, of which at most one can be true.
struct Rivals {
    Doubt doubt; ///< that they raise
    std::vector<Gains> gains;
};

/// What the frames say against a line.
struct Verdict {
    Doubt doubt = Doubt::None;
    int unproven = 0; ///< [frames] at the beginning that pass before the line is proven
};

class LineCheck
{
public:
    LineCheck(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels)
        : evidence(evidenceOf(grid, levels)),
          line(line),
          labels(labelsFrom(line.count)),
          unexplained(unexplainedBy(levels, grid)),
          firstEnd(leastStretch - (grid.firstHalf < 0 ? 0 : 1))
    {
    }

    /// \a motion: the log-likelihood ratio that labels which do not count up may have.
    Verdict verdict(double motion) const;

private:
    using Change = std::function<PartValues(PartValues values, int frame)>;

    std::vector<PartValues> labelsFrom(std::int64_t count) const;
    Gains gainsOf(const Change &change) const;
    Rivals otherCounts() const;
    Rivals otherNumbers() const;
    Rivals otherSeconds() const;
    Rivals otherValues(std::size_t part) const;
    Rivals otherMotions() const;
    /// For the first one, two, three... frames the log-likelihood ratio of a recording that does something
    /// else there, averaged over what else it may do; \a backwards: for the last ones.
    std::vector<double> oddsOf(const std::vector<Rivals> &lines, const Rivals &motions, bool backwards) const;

    Evidence evidence;
    LabelLine line;
    std::vector<PartValues> labels; ///< of the line
    Unexplained unexplained;
    std::size_t firstEnd; ///< last frame of the shortest line at the beginning that is looked for
};

std::vector<PartValues> LineCheck::labelsFrom(std::int64_t count) const
{
    std::vector<PartValues> values;
    for (std::size_t frame = 0; frame < evidence.size(); ++frame)
        values.push_back(valuesOf(labelAt(count + static_cast<int>(frame), line.rate), line.rate.dropFrame));
    return values;
}

Gains LineCheck::gainsOf(const Change &change) const
{
    Gains gains;
    for (std::size_t frame = 0; frame < labels.size(); ++frame) {
        const PartValues other = change(labels[frame], static_cast<int>(frame));
        double gain = 0.0;
        for (std::size_t part = 0; part < partCount; ++part) {
            gain += evidence[frame][part][static_cast<std::size_t>(other[part])] -
                    evidence[frame][part][static_cast<std::size_t>(labels[frame][part])];
        }
        gains.push_back(gain);
    }
    return gains;
}

Rivals LineCheck::otherCounts() const
{
    Rivals rivals{Doubt::Jump, {}};
    const std::int64_t second = line.rate.base;
    const std::int64_t minute = secondsPerMinute * second;
    const std::int64_t hour = framesPerDay(line.rate) / 24;
    for (const std::int64_t distance : {std::int64_t{1}, std::int64_t{2}, second, minute, hour}) {
        for (const std::int64_t count : {line.count - distance, line.count + distance}) {
            const std::vector<PartValues> others = labelsFrom(count);
            rivals.gains.push_back(gainsOf(
                [&](const PartValues &, int frame) { return others[static_cast<std::size_t>(frame)]; }));
        }
    }
    return rivals;
}

PartValues withNumber(PartValues values, int number)
{
    values[FrameUnitsPart] = number % 10;
    values[FrameTensPart] = number / 10;
    return values;
}

Rivals LineCheck::otherNumbers() const
{
    Rivals rivals{Doubt::Jump, {}};
    for (int shift = 1; shift < line.rate.base; ++shift) {
        rivals.gains.push_back(gainsOf([&](PartValues values, int) {
            const int number = 10 * values[FrameTensPart] + values[FrameUnitsPart];
            return withNumber(values, (number + shift) % line.rate.base);
        }));
    }
    return rivals;
}

Rivals LineCheck::otherSeconds() const
{
    Rivals rivals{Doubt::Jump, {}};
    for (int shift = 1; shift < secondsPerMinute; ++shift) {
        rivals.gains.push_back(gainsOf([&](PartValues values, int) {
            const int second =
                (10 * values[SecondTensPart] + values[SecondUnitsPart] + shift) % secondsPerMinute;
            values[SecondUnitsPart] = second % 10;
            values[SecondTensPart] = second / 10;
            return values;
        }));
    }
    return rivals;
}

Rivals LineCheck::otherValues(std::size_t part) const
{
    Rivals rivals{Doubt::Jump, {}};
    for (int shift = 1; shift < 1 << parts[part].width; ++shift) {
        rivals.gains.push_back(gainsOf([&](PartValues values, int) {
            values[part] = (values[part] + shift) % (1 << parts[part].width);
            return values;
        }));
    }
    return rivals;
}

Rivals LineCheck::otherMotions() const
{
    Rivals rivals{Doubt::Frozen, {}};
    for (int number = 0; number < line.rate.base; ++number)
        rivals.gains.push_back(gainsOf([&](PartValues values, int) { return withNumber(values, number); }));
    for (int number = 0; number < line.rate.base; ++number) {
        rivals.gains.push_back(gainsOf([&](PartValues values, int frame) {
            return withNumber(values, ((number - frame) % line.rate.base + line.rate.base) % line.rate.base);
        }));
        for (const int held : {2, 3}) {
            for (int phase = 0; phase < held; ++phase) {
                rivals.gains.push_back(gainsOf([&](PartValues values, int frame) {
                    return withNumber(values, (number + (frame + phase) / held) % line.rate.base);
                }));
            }
        }
    }
    return rivals;
}

double sumOf(const Gains &gains)
{
    double sum = 0.0;
    for (const double gain : gains)
        sum += gain;
    return sum;
}

double bestWhole(const Rivals &rivals)
{
    double best = -1e9;
    for (const Gains &gains : rivals.gains)
        best = std::max(best, sumOf(gains));
    return best;
}

/// The sums of \a gains over the first one, two, three... frames.
/// What repeats in every frame adds up as fast as evidence does.
std::vector<Gains> runningSums(const Rivals &rivals, bool backwards, const Unexplained &unexplained)
{
    const double once = unexplained.whole - unexplained.repeated;
    const double step = once > 0.0 ? unexplained.repeated / once : 0.0;
    std::vector<Gains> sums;
    for (Gains gains : rivals.gains) {
        if (backwards)
            std::reverse(gains.begin(), gains.end());
        double sum = 0.0;
        for (double &gain : gains)
            gain = sum += gain;
        for (std::size_t frame = 1; frame < gains.size(); ++frame)
            gains[frame] /= 1.0 + static_cast<double>(frame) * step;
        sums.push_back(std::move(gains));
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

/// For the first one, two, three... frames the logarithm of the mean likelihood ratio of all \a rivals; \a
/// withLine: and of the line itself.
std::vector<double> meanRatios(const Rivals &rivals, bool backwards, bool withLine,
                               const Unexplained &unexplained)
{
    const std::vector<Gains> sums = runningSums(rivals, backwards, unexplained);
    std::vector<double> means;
    for (std::size_t frame = 0; frame < sums.front().size(); ++frame) {
        std::vector<double> ratios;
        if (withLine)
            ratios.push_back(0.0);
        for (const Gains &gains : sums)
            ratios.push_back(gains[frame]);
        means.push_back(logSum(ratios) - std::log(static_cast<double>(ratios.size())));
    }
    return means;
}

std::vector<double> LineCheck::oddsOf(const std::vector<Rivals> &lines, const Rivals &motions,
                                      bool backwards) const
{
    const std::vector<double> near = meanRatios(otherCounts(), backwards, false, unexplained);
    const std::vector<double> moving = meanRatios(motions, backwards, false, unexplained);
    std::vector<std::vector<double>> digits;
    std::vector<double> any(labels.size());
    for (const Rivals &rivals : lines) {
        digits.push_back(meanRatios(rivals, backwards, false, unexplained));
        const std::vector<double> withLine = meanRatios(rivals, backwards, true, unexplained);
        std::transform(any.begin(), any.end(), withLine.begin(), any.begin(), std::plus<>());
    }
    const double digitShare = shareOfOneDigit / static_cast<double>(lines.size());
    std::vector<double> sums;
    for (std::size_t frame = 0; frame < labels.size(); ++frame) {
        std::vector<double> odds{std::log(shareOfNearLines) + near[frame],
                                 std::log(shareOfAnyLine) + any[frame],
                                 std::log(shareOfMotions) + moving[frame]};
        for (const std::vector<double> &digit : digits)
            odds.push_back(std::log(digitShare) + digit[frame]);
        sums.push_back(logSum(odds));
    }
    return sums;
}

/// [frames] that pass before the line is proven, by \a odds from frame \a first on.
int framesUnproven(const std::vector<double> &odds, std::size_t first)
{
    std::size_t frame = first;
    while (frame < odds.size() && odds[frame] >= proven)
        ++frame;
    return frame == first ? 0 : static_cast<int>(frame);
}

/// The odds of something else at the beginning, which may end at any frame from \a first on; \a odds are
/// those for each end. Only what exceeds chance counts: timecode may begin late, and nothing speaks for
/// anything before.
double oddsOfBeginning(const std::vector<double> &odds, std::size_t first)
{
    double sum = 0.0;
    for (std::size_t end = first; end < odds.size(); ++end)
        sum += std::max(0.0, std::expm1(odds[end]));
    return sum > 0.0 ? std::log(sum / static_cast<double>(odds.size() - first)) : impossible;
}

/// The greatest of \a odds, but for those of one frame.
double mostOf(const std::vector<double> &odds)
{
    return odds.size() < leastStretch ? impossible
                                      : *std::max_element(odds.begin() + leastStretch - 1, odds.end());
}

Verdict LineCheck::verdict(double motion) const
{
    std::vector<Rivals> lines{otherNumbers(), otherSeconds()};
    for (std::size_t part = 0; part < partCount; ++part) {
        if (part != FlagPart || line.rate.base == 30)
            lines.push_back(otherValues(part));
    }
    const Rivals motions = otherMotions();
    double best = contradiction;
    Doubt doubt = Doubt::None;
    for (const Rivals &rivals : lines) {
        if (bestWhole(rivals) > best) {
            best = bestWhole(rivals);
            doubt = Doubt::TooNoisy;
        }
    }
    if (bestWhole(motions) > best)
        return {motions.doubt};
    if (doubt != Doubt::None)
        return {doubt};
    if (labels.size() > 1 && bestWhole(motions) > motion)
        return {motions.doubt};
    const std::vector<double> fromBeginning = oddsOf(lines, motions, false);
    const std::vector<double> fromEnd = oddsOf(lines, motions, true);
    if (oddsOfBeginning(fromBeginning, firstEnd) > otherBeginning || mostOf(fromEnd) > otherEnd)
        return {Doubt::Jump};
    return {Doubt::None, framesUnproven(fromBeginning, firstEnd)};
}

/// Whether sync words show somewhere in \a count half bits that begin at \a halves.
bool hasSyncWords(const float *halves, std::size_t count)
{
    constexpr std::size_t syncHalves = 2 * std::size_t{syncBits};
    for (std::size_t place = 0; place < halvesPerFrame; ++place) {
        double sum = 0.0;
        double squares = 0.0;
        double used = 0.0;
        for (std::size_t i = place; i + syncHalves <= count; i += halvesPerFrame) {
            const auto fit = static_cast<double>(syncResemblance(halves + i));
            sum += fit;
            squares += fit * fit;
            used += fit != 0.0 ? 1.0 : 0.0;
        }
        used = std::max(1.0, used);
        const double steady = std::abs(sum) / std::sqrt(used * static_cast<double>(syncHalves));
        // The cube root of a chi-square sum is nearly normal (Wilson and Hilferty).
        const double spread = 2.0 / (9.0 * used);
        const double root = std::cbrt(squares / (static_cast<double>(syncHalves) * used));
        const double free = (root - (1.0 - spread)) / std::sqrt(spread);
        if (std::max(steady, free) > otherPhase)
            return true;
    }
    return false;
}

/// How many frames of \a grid pass before its timecode shows.
int framesBefore(const FrameGrid &grid)
{
    const bool steady = isSteady(grid);
    int before = 0;
    for (int frame = leastStretch; frame < grid.frames; ++frame) {
        const double earlier = strengthOf(grid, 0, frame, steady).amplitude;
        if (earlier < absent * strengthOf(grid, frame, grid.frames, steady).amplitude)
            before = frame;
    }
    return before;
}

/// RMS of \a samples between \a from and \a to.
double levelBetween(const std::vector<float> &samples, double from, double to)
{
    double squares = 0.0;
    double count = 0.0;
    for (auto i = static_cast<std::size_t>(std::max(0.0, from));
         i < samples.size() && static_cast<double>(i) < to; ++i) {
        squares += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
        count += 1.0;
    }
    return std::sqrt(squares / std::max(1.0, count));
}

/// The doubt of \a verdict on a recording of \a frames frames; a jump where a line is proven late, behind
/// sound that may hide other labels.
Doubt doubtOf(const Verdict &verdict, int frames, const std::vector<float> &samples, double frameLength)
{
    const double hidden = verdict.unproven * frameLength;
    const bool isHidden = verdict.unproven > latestProof * frames &&
                          levelBetween(samples, 0.0, hidden) >
                              quiet * levelBetween(samples, hidden, static_cast<double>(samples.size()));
    return verdict.doubt == Doubt::None && isHidden ? Doubt::Jump : verdict.doubt;
}

} // namespace

bool isPrecededByAnother(const FrameGrid &grid, const Conditioned &sound, const Clock &clock)
{
    const int before = framesBefore(grid);
    const double strongest = strengthOf(grid, before, grid.frames, false).amplitude;
    int end = 0; // of the frames in which nothing shows where it should
    while (end < before && strengthOf(grid, end, end + 1, true).amplitude < shows * strongest)
        ++end;
    if (end < leastStretch)
        return false;
    // Half way between half bits those of a one cancel out: what begins there shows only in a second look.
    const std::vector<float> between = sumHalfBits(sound, clock, 0.25);
    const auto count = static_cast<std::size_t>(end) * halvesPerFrame;
    return hasSyncWords(grid.halves.data(), count) ||
           hasSyncWords(between.data(), std::min(between.size(), count));
}

bool isMaskedBefore(const FrameGrid &grid, const std::vector<float> &samples, double frameLength)
{
    const int frames = framesBefore(grid);
    const double before = frames * frameLength;
    return frames > leastStretch &&
           levelBetween(samples, 0.0, before) >
               hiding * levelBetween(samples, before, static_cast<double>(samples.size()));
}

Doubt doubtAboutLine(const LabelLine &line, const FrameGrid &grid, const std::vector<float> &levels,
                     const std::vector<float> &samples, double frameLength)
{
    return doubtOf(LineCheck(line, grid, levels).verdict(otherMotion), grid.frames, samples, frameLength);
}

Doubt doubtAboutChain(const FrameChain &chain, const std::vector<float> &samples, int sampleRate)
{
    // Behind the chain its clock would run out of step.
    const auto end = std::min(samples.size(), static_cast<std::size_t>(chain.last));
    const std::vector<float> part(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(end));
    const Conditioned sound = Conditioner(part, sampleRate).prepare(FrontEnd::Flat);
    const double perSample = sound.sampleRate / sampleRate;
    Clock clock;
    clock.bitLength = chain.frameLength * perSample / bitsPerFrame;
    const double start = chain.first * perSample;
    const double bitsBefore = std::floor(start / clock.bitLength);
    clock.knotDistance = static_cast<double>(part.size()) * perSample;
    clock.knots = {start - bitsBefore * clock.bitLength};
    const auto syncBit = (static_cast<std::int64_t>(bitsBefore) + dataBits) % bitsPerFrame;
    const FrameGrid grid =
        cutIntoFrames(sumHalfBits(sound, clock, 0.0), static_cast<std::size_t>(2 * syncBit));
    const double frameZero = (clock.position(0.5 * grid.firstHalf)) / perSample;
    const LabelLine line{chain.rate, std::llround(chain.startCount + frameZero / chain.frameLength)};
    if (isPrecededByAnother(grid, sound, clock))
        return Doubt::Jump;
    if (isMaskedBefore(grid, part, chain.frameLength))
        return Doubt::TooNoisy;
    const Verdict verdict = LineCheck(line, grid, {}).verdict(contradiction); // that labels count up was read
    return doubtOf(verdict, grid.frames, part, chain.frameLength);
}

} // namespace ltcreader
