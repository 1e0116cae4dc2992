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

#include "ltcreader/jointdecision.h"

#include "ltcreader/framefold.h"
#include "ltcreader/trellis.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr std::size_t triedNumberings = 12;
constexpr std::uint32_t anyBit = 0b11;
constexpr double leastNoise = 0.1; // share of the power that is never explained: filters, wandering speed

// Log-likelihoods of speeds: most machines run true, some a few thousandths off, few are tape.
constexpr double trueSpeed = 0.0015;
constexpr double nearSpeed = 0.012;
constexpr double nearPenalty = 4.0;
constexpr double farPenalty = 8.0;

/// The digits of a second, of a minute and of an hour, and the drop-frame flag, in order of their bits.
enum Digit : std::size_t { DropFlag, SecondUnits, SecondTens, MinuteUnits, MinuteTens, HourUnits, HourTens };
constexpr std::size_t digitCount = 7;
constexpr std::array<BitField, digitCount> digitFields{
    field::dropFrame,  field::secondUnits, field::secondTens, field::minuteUnits,
    field::minuteTens, field::hourUnits,   field::hourTens};

using Allowed = std::array<std::uint32_t, digitCount>; // a bit for each value that a digit may have
constexpr Allowed anyTime{anyBit, 0x3FF, 0x3F, 0x3FF, 0x3F, 0x3FF, 0x7};

struct Hypothesis {
    FrameNumbering numbering;
    int correctionBit = 27;
    int second = 0;  // of frame 0
    int minute = -1; // of frame 0; -1 = stands still, so it needs no assumption
    int hour = -1;   // likewise
    Allowed allowed = anyTime;
    float fit = 0.0F;
    FrameBits bits = 0; // without the frame number
};

std::optional<Digit> digitAt(int bit)
{
    for (std::size_t digit = 0; digit < digitCount; ++digit) {
        if (digitFields[digit].first == bit)
            return static_cast<Digit>(digit);
    }
    return std::nullopt;
}

/// What the digits are \a later seconds after frame 0; -1 where the hypothesis leaves them open.
std::array<int, digitCount> digitsAfter(const Hypothesis &hypothesis, int later)
{
    const int second = hypothesis.second + later;
    std::array<int, digitCount> digits{};
    digits.fill(-1);
    digits[SecondUnits] = second % 60 % 10;
    digits[SecondTens] = second % 60 / 10;
    if (hypothesis.minute < 0)
        return digits;
    const int minute = hypothesis.minute + second / 60;
    digits[MinuteUnits] = minute % 60 % 10;
    digits[MinuteTens] = minute % 60 / 10;
    if (hypothesis.hour < 0)
        return digits;
    const int hour = (hypothesis.hour + minute / 60) % 24;
    digits[HourUnits] = hour % 10;
    digits[HourTens] = hour / 10;
    return digits;
}

/// All seconds of a fold added up, as far as a hypothesis tells how.
struct WholeSum {
    SecondSum halves{};
    std::array<float, digitCount> fits{}; // of the digits that the hypothesis gives
    std::array<bool, digitCount> given{};
};

void addSecond(const SecondSum &second, const std::array<int, digitCount> &digits, int correctionBit,
               WholeSum &sum)
{
    const auto addBit = [&](int bit, float polarity) {
        const auto half = static_cast<std::size_t>(2 * bit);
        sum.halves[half] += polarity * second[half];
        sum.halves[half + 1] += polarity * second[half + 1];
    };
    float polarity = 1.0F;
    for (int bit = 4; bit < correctionBit; ++bit) {
        const auto digit = digitAt(bit);
        if (!digit || digits[*digit] < 0) {
            addBit(bit, polarity);
            continue;
        }
        const int width = digitFields[*digit].width;
        sum.fits[*digit] += polarity * resemblance(second.data() + 2 * bit, digits[*digit], width);
        polarity *= polarityAfter(digits[*digit], width);
        bit += width - 1;
    }
    polarity = 1.0F;
    for (int bit = dataBits - 1; bit > correctionBit; --bit) {
        std::optional<Digit> ending;
        for (std::size_t digit = 0; digit < digitCount; ++digit) {
            if (digitFields[digit].first + digitFields[digit].width - 1 == bit)
                ending = static_cast<Digit>(digit);
        }
        if (!ending || digits[*ending] < 0) {
            addBit(bit, polarity);
            continue;
        }
        const BitField part = digitFields[*ending];
        polarity *= polarityAfter(digits[*ending], part.width);
        sum.fits[*ending] +=
            polarity * resemblance(second.data() + 2 * part.first, digits[*ending], part.width);
        bit = part.first;
    }
}

void walk(Trellis &trellis, const WholeSum &sum, const Allowed &allowed, int from, int to)
{
    for (int bit = from; bit < to; ++bit) {
        const float *halves = sum.halves.data() + 2 * bit;
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

class Decider
{
public:
    Decider(const FrameGrid &grid, double measuredRate, const std::optional<FrameRate> &wanted)
        : grid(grid), polarities(findPolarities(grid)), measuredRate(measuredRate), wanted(wanted)
    {
    }

    std::optional<JointDecision> decide()
    {
        if (grid.frames < 1)
            return std::nullopt;
        rankNumberings();
        tryAllSeconds();
        if (hypotheses.empty())
            return std::nullopt;
        return concludeFrom(bestHypothesis());
    }

private:
    struct Ranked {
        FrameNumbering numbering;
        int correctionBit;
        FrameFold fold;
        float fit;
    };

    double speedPenalty(int base) const
    {
        const FrameRate whole{base, false, false};
        const FrameRate ntsc{base, base != 25, false};
        const double error = std::min(std::abs(std::log(measuredRate / whole.framesPerSecond())),
                                      std::abs(std::log(measuredRate / ntsc.framesPerSecond())));
        return error < trueSpeed ? 0.0 : error < nearSpeed ? nearPenalty : farPenalty;
    }

    /// How well frames fit a numbering, whatever seconds they show.
    static float fitOfNumbering(const FrameFold &fold, int correctionBit)
    {
        WholeSum sum;
        float secondsFit = 0.0F;
        std::array<int, digitCount> open{};
        open.fill(-1);
        for (const SecondSum &second : fold.seconds) {
            addSecond(second, open, correctionBit, sum);
            Trellis ofSecond(false);
            for (int bit = 16; bit < correctionBit; ++bit)
                ofSecond.free(bit, second.data() + 2 * bit);
            secondsFit += ofSecond.fit(false);
        }
        Trellis beginning(true);
        beginning.known(fold.unitsFit);
        walk(beginning, sum, anyTime, 4, 8);
        beginning.known(fold.tensFit);
        walk(beginning, sum, anyTime, 10, 16);
        Trellis end(false);
        walk(end, sum, anyTime, correctionBit + 1, dataBits);
        return beginning.fit(false) + secondsFit + end.fit(true);
    }

    void rankNumberings()
    {
        for (const int base : {24, 25, 30}) {
            for (int first = 0; first < base; ++first) {
                FrameNumbering numbering{base, first, -1};
                const int seconds = placeOf(numbering, grid.frames - 1).first;
                for (numbering.droppedAt = -1; numbering.droppedAt <= (base == 30 ? seconds : -1);
                     numbering.droppedAt += numbering.droppedAt < 0 ? 2 : 1) {
                    for (const int correctionBit : correctionBits) {
                        FrameFold fold = foldFrames(grid, polarities, numbering, correctionBit);
                        const float fit = fitOfNumbering(fold, correctionBit);
                        ranked.push_back({numbering, correctionBit, std::move(fold), fit});
                    }
                }
            }
        }
        const std::size_t kept = std::min(triedNumberings, ranked.size());
        std::partial_sort(ranked.begin(), ranked.begin() + static_cast<std::ptrdiff_t>(kept), ranked.end(),
                          [](const Ranked &a, const Ranked &b) { return a.fit > b.fit; });
        ranked.resize(kept);
    }

    void tryAllSeconds()
    {
        for (const Ranked &numbering : ranked) {
            const int last = static_cast<int>(numbering.fold.seconds.size()) - 1;
            for (int second = 0; second < 60; ++second) {
                Hypothesis hypothesis;
                hypothesis.numbering = numbering.numbering;
                hypothesis.correctionBit = numbering.correctionBit;
                hypothesis.second = second;
                const bool minuteChanges = second + last >= 60;
                const int droppedAt = numbering.numbering.droppedAt;
                if (droppedAt >= 0 && second + droppedAt != 60)
                    continue;
                if (!minuteChanges) {
                    consider(numbering.fold, hypothesis);
                    continue;
                }
                for (hypothesis.minute = 0; hypothesis.minute < 60; ++hypothesis.minute) {
                    const bool drops = hypothesis.minute % 10 != 9;
                    if (droppedAt >= 0 && !drops)
                        continue;
                    // With the flag set, numbers are left out exactly where the minute asks for it.
                    hypothesis.allowed[DropFlag] = droppedAt >= 0 ? 0b10 : drops ? 0b01 : anyBit;
                    hypothesis.hour = -1;
                    if (hypothesis.minute < 59) {
                        consider(numbering.fold, hypothesis);
                        continue;
                    }
                    for (hypothesis.hour = 0; hypothesis.hour < 24; ++hypothesis.hour) {
                        consider(numbering.fold, hypothesis);
                    }
                }
            }
        }
    }

    void consider(const FrameFold &fold, Hypothesis &hypothesis)
    {
        evaluate(fold, hypothesis);
        hypotheses.push_back(hypothesis);
    }

    /// Sets fit and bits of \a hypothesis.
    static void evaluate(const FrameFold &fold, Hypothesis &hypothesis)
    {
        WholeSum sum;
        std::array<int, digitCount> digits{};
        for (std::size_t second = 0; second < fold.seconds.size(); ++second) {
            digits = digitsAfter(hypothesis, static_cast<int>(second));
            addSecond(fold.seconds[second], digits, hypothesis.correctionBit, sum);
        }
        for (std::size_t digit = 0; digit < digitCount; ++digit)
            sum.given[digit] = digits[digit] >= 0;
        // Hours stop at 23: the units depend on the tens.
        hypothesis.fit = -1e30F;
        constexpr std::array<std::pair<std::uint32_t, std::uint32_t>, 2> hours{std::pair{0b011U, 0x3FFU},
                                                                               std::pair{0b100U, 0xFU}};
        for (const auto &[tens, units] : hours) {
            Allowed allowed = hypothesis.allowed;
            allowed[HourTens] &= tens;
            allowed[HourUnits] &= units;
            const bool open = hypothesis.hour < 0;
            if (open && (allowed[HourTens] == 0 || allowed[HourUnits] == 0))
                continue;
            Trellis beginning(true);
            beginning.known(fold.unitsFit);
            walk(beginning, sum, allowed, 4, 8);
            beginning.known(fold.tensFit);
            walk(beginning, sum, allowed, 10, hypothesis.correctionBit);
            Trellis end(false);
            walk(end, sum, allowed, hypothesis.correctionBit + 1, dataBits);
            const float fit = beginning.fit(false) + end.fit(true);
            if (fit > hypothesis.fit) {
                hypothesis.fit = fit;
                hypothesis.bits = beginning.bits(false) | end.bits(true);
            }
            if (!open)
                break;
        }
        const std::array<int, digitCount> first = digitsAfter(hypothesis, 0);
        for (std::size_t digit = 0; digit < digitCount; ++digit) {
            if (first[digit] >= 0) {
                hypothesis.bits |= static_cast<FrameBits>(first[digit]) << digitFields[digit].first;
            }
        }
    }

    const FrameFold &foldOf(const Hypothesis &hypothesis) const
    {
        const auto found = std::find_if(ranked.begin(), ranked.end(), [&hypothesis](const Ranked &numbering) {
            return numbering.numbering.base == hypothesis.numbering.base &&
                   numbering.numbering.first == hypothesis.numbering.first &&
                   numbering.numbering.droppedAt == hypothesis.numbering.droppedAt &&
                   numbering.correctionBit == hypothesis.correctionBit;
        });
        return found->fold;
    }

    /// From fit to log-likelihood.
    double scale(float fit) const
    {
        const double amplitude = std::clamp(static_cast<double>(fit) / usedHalves(), 0.01, 1.0);
        return amplitude / std::max(leastNoise, 1.0 - amplitude * amplitude);
    }

    double usedHalves() const
    {
        const auto used =
            std::count_if(grid.halves.begin(), grid.halves.end(), [](float half) { return half != 0.0F; });
        return std::max(1.0, static_cast<double>(used) * (dataHalves - 2.0) / halvesPerFrame);
    }

    Hypothesis bestHypothesis() const
    {
        const float most =
            std::max_element(hypotheses.begin(), hypotheses.end(),
                             [](const Hypothesis &a, const Hypothesis &b) { return a.fit < b.fit; })
                ->fit;
        const double perFit = scale(most);
        return *std::max_element(hypotheses.begin(), hypotheses.end(),
                                 [&](const Hypothesis &a, const Hypothesis &b) {
                                     return perFit * a.fit - speedPenalty(a.numbering.base) <
                                            perFit * b.fit - speedPenalty(b.numbering.base);
                                 });
    }

    /// Whether two hypotheses name the frame in the middle alike. At the ends, ways of counting that fit the
    /// same frames may differ where hardly anything of a frame is there.
    bool sameTimecode(const Hypothesis &a, const Hypothesis &b) const
    {
        const auto [secondA, numberA] = placeOf(a.numbering, grid.frames / 2);
        const auto [secondB, numberB] = placeOf(b.numbering, grid.frames / 2);
        if (numberA != numberB)
            return false;
        const std::array<int, digitCount> digitsA = digitsAfter(a, secondA);
        const std::array<int, digitCount> digitsB = digitsAfter(b, secondB);
        for (std::size_t digit = SecondUnits; digit < digitCount; ++digit) {
            const int valueA = digitsA[digit] < 0 ? fieldValue(a.bits, digitFields[digit]) : digitsA[digit];
            const int valueB = digitsB[digit] < 0 ? fieldValue(b.bits, digitFields[digit]) : digitsB[digit];
            if (valueA != valueB)
                return false;
        }
        return true;
    }

    /// The best fit of a timecode other than that of \a best.
    float bestRival(const Hypothesis &best) const
    {
        float rival = -1e30F;
        for (const Hypothesis &other : hypotheses) {
            if (!sameTimecode(other, best))
                rival = std::max(rival, other.fit);
        }
        for (const Digit digit : {MinuteUnits, MinuteTens, HourUnits, HourTens}) {
            if (digitsAfter(best, 0)[digit] >= 0)
                continue;
            Hypothesis other = best;
            other.allowed[digit] &= ~(1U << fieldValue(best.bits, digitFields[digit]));
            evaluate(foldOf(best), other);
            rival = std::max(rival, other.fit);
        }
        return rival;
    }

    std::optional<JointDecision> concludeFrom(Hypothesis best)
    {
        JointDecision decision;
        decision.rate.base = best.numbering.base;
        const float bestFit = best.fit;
        best.bits |= static_cast<FrameBits>(best.numbering.first % 10) << field::frameUnits.first;
        best.bits |= static_cast<FrameBits>(best.numbering.first / 10) << field::frameTens.first;
        decision.rate.dropFrame = best.numbering.base == 30 && fieldValue(best.bits, field::dropFrame) != 0;
        decision.rate.ntsc = decision.rate.dropFrame;
        const auto label = labelOf(best.bits);
        if (!label || (wanted && wanted->base != decision.rate.base))
            return std::nullopt;
        if (!isLabel(*label, decision.rate)) {
            // Only the flag can be wrong here, or the label is.
            decision.rate.dropFrame = false;
            decision.rate.ntsc = false;
        }
        // Counted from the middle: at the ends ways of counting may differ where hardly anything of a frame
        // is there.
        const int middle = grid.frames / 2;
        const auto [second, number] = placeOf(best.numbering, middle);
        const int minutes = best.minute < 0 ? 0 : (best.second + second) / 60;
        const int hours = best.hour < 0 ? 0 : (label->minutes + minutes) / 60;
        const Timecode inMiddle{(label->hours + hours) % 24, (label->minutes + minutes) % 60,
                                (best.second + second) % 60, number};
        decision.count = frameCount(inMiddle, decision.rate) - middle;
        decision.bits = best.bits;
        decision.amplitude = static_cast<double>(bestFit) / usedHalves();
        decision.significance = static_cast<double>(bestFit) / std::sqrt(usedHalves());
        decision.syncAmplitude = polarities.amplitude;
        drawLevels(best, decision);
        const double noise = std::max(
            {leastNoise, 1.0 - decision.amplitude * decision.amplitude, repeatedError(decision.levels)});
        decision.margin =
            std::min(1.0, decision.amplitude) / noise * static_cast<double>(bestFit - bestRival(best));
        return decision;
    }

    /// The noise for each half bit that errors amount to which are the same in every frame: what hum, filters
    /// and neighbouring bits do does not grow less by adding up frames.
    double repeatedError(const std::vector<float> &levels) const
    {
        double sum = 0.0;
        double squares = 0.0;
        double places = 0.0;
        double frames = 0.0;
        for (std::size_t half = 0; half < halvesPerFrame; ++half) {
            double fit = 0.0;
            double count = 0.0;
            for (std::size_t i = half; i < levels.size(); i += halvesPerFrame) {
                fit += static_cast<double>(levels[i]) * static_cast<double>(grid.halves[i]);
                count += levels[i] != 0.0F && grid.halves[i] != 0.0F ? 1.0 : 0.0;
            }
            if (count < 1.0)
                continue;
            sum += fit / count;
            squares += fit / count * (fit / count);
            frames += count;
            places += 1.0;
        }
        const double mean = sum / std::max(1.0, places);
        return (squares / std::max(1.0, places) - mean * mean) * frames / std::max(1.0, places);
    }

    /// Draws the square wave that was decided for.
    void drawLevels(const Hypothesis &best, JointDecision &decision) const
    {
        for (int frame = 0; frame < grid.frames; ++frame) {
            const auto index = static_cast<std::size_t>(frame);
            const auto [second, number] = placeOf(best.numbering, frame);
            FrameBits bits = best.bits;
            const auto put = [&bits](BitField part, int value) {
                bits &= ~(((FrameBits{1} << part.width) - 1) << part.first);
                bits |= static_cast<FrameBits>(value) << part.first;
            };
            put(field::frameUnits, number % 10);
            put(field::frameTens, number / 10);
            const std::array<int, digitCount> digits = digitsAfter(best, second);
            for (std::size_t digit = 0; digit < digitCount; ++digit) {
                if (digits[digit] >= 0)
                    put(digitFields[digit], digits[digit]);
            }
            std::array<float, halvesPerFrame> levels{};
            const auto draw = [&levels](int bit, bool one, float level) {
                levels[static_cast<std::size_t>(2 * bit)] = level;
                levels[static_cast<std::size_t>(2 * bit + 1)] = one ? -level : level;
                return one ? level : -level;
            };
            float level = polarities.atStart[index];
            for (int bit = 0; bit < best.correctionBit; ++bit)
                level = draw(bit, (bits >> bit & 1U) != 0, level);
            level = polarities.atSync[index];
            for (int bit = 0; bit < syncBits; ++bit) {
                level = draw(dataBits + bit, (syncWord >> bit & 1U) != 0, level);
            }
            level = polarities.atSync[index];
            for (int bit = dataBits - 1; bit > best.correctionBit; --bit) {
                const bool one = (bits >> bit & 1U) != 0;
                level = one ? level : -level;
                draw(bit, one, level);
            }
            decision.levels.insert(decision.levels.end(), levels.begin(), levels.end());
        }
    }

    const FrameGrid &grid;
    Polarities polarities;
    double measuredRate; // [frames/s]
    std::optional<FrameRate> wanted;
    std::vector<Ranked> ranked; // the best numberings
    std::vector<Hypothesis> hypotheses;
};

} // namespace

std::optional<JointDecision> decideTimecode(const FrameGrid &grid, double measuredRate,
                                            const std::optional<FrameRate> &wanted)
{
    return Decider(grid, measuredRate, wanted).decide();
}

} // namespace ltcreader
