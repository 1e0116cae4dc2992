// SPDX-License-Identifier: MIT
#include "testkit/recordings/cases.h"

#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace testrecordings
{

namespace
{

std::string textAt(LtcTime start, LtcRate rate, int channel, std::int64_t samples)
{
    return testsignals::text(start, rate) + " at " + nameOf(rate) + ", channel " + std::to_string(channel) +
           ", " + std::to_string(samples) + " samples since midnight";
}

} // namespace

std::string nameOf(Verdict verdict)
{
    constexpr std::array<const char *, 4> names{"right", "wrong", "refused", "broken"};
    return names.at(static_cast<std::size_t>(verdict));
}

std::string textOfTruth(const Case &recording)
{
    if (!recording.truth)
        return "no timecode";
    const LtcSignal &signal = recording.truth->signal;
    return textAt(testsignals::startTime(signal), signal.rate, recording.truth->channel,
                  testsignals::samplesSinceMidnight(signal));
}

std::string textOf(const std::optional<Answer> &answer)
{
    return answer ? textAt(answer->start, answer->rate, answer->channel, answer->samplesSinceMidnight)
                  : "nothing found";
}

bool isRight(const Truth &truth, const Answer &answer)
{
    const LtcSignal &signal = truth.signal;
    const bool label = testsignals::text(testsignals::startTime(signal), signal.rate) ==
                       testsignals::text(answer.start, answer.rate);
    return label && isRateRight(truth, answer);
}

Verdict judge(const Case &recording, const std::optional<Answer> &answer)
{
    if (!answer)
        return Verdict::Refused;
    return recording.truth && isRight(*recording.truth, *answer) ? Verdict::Right : Verdict::Wrong;
}

bool isRateRight(const Truth &truth, const Answer &answer)
{
    const LtcRate rate = truth.signal.rate;
    const bool ntscCounts = truth.speedKnown || rate.dropFrame;
    return answer.rate.base == rate.base && (!ntscCounts || answer.rate.ntsc == rate.ntsc);
}

double positionError(const Truth &truth, const Answer &answer)
{
    const LtcSignal &signal = truth.signal;
    const double day = static_cast<double>(testsignals::framesPerDay(signal.rate)) *
                       testsignals::samplesPerFrame(signal.rate, signal.sampleRate);
    const auto difference = static_cast<double>(
        std::abs(answer.samplesSinceMidnight - testsignals::samplesSinceMidnight(signal)));
    return std::min(difference, std::abs(day - difference));
}

const std::vector<LtcRate> &allRates()
{
    static const std::vector<LtcRate> rates{{24, true, false}, {24, false, false}, {25, false, false},
                                            {30, true, false}, {30, true, true},   {30, false, false}};
    return rates;
}

std::string nameOf(LtcRate rate)
{
    if (rate.dropFrame)
        return "29.97 drop";
    if (rate.ntsc)
        return rate.base == 24 ? "23.976" : "29.97";
    return std::to_string(rate.base);
}

LtcRate anyRate(Random &random)
{
    return allRates()[static_cast<std::size_t>(random.integer(0, 5))];
}

bool isLabel(LtcTime label, LtcRate rate)
{
    const bool leftOut = rate.dropFrame && label.frames < 2 && label.seconds == 0 && label.minutes % 10 != 0;
    return label.hours < 24 && label.minutes < 60 && label.seconds < 60 && label.frames < rate.base &&
           !leftOut;
}

std::uint64_t numberFrom(const std::string &text)
{
    std::uint64_t number = 0;
    const char *end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end)
        throw std::invalid_argument("\"" + text + "\" is no number");
    return number;
}

LtcSignal anySignal(Random &random, LtcRate rate)
{
    LtcSignal signal;
    signal.rate = rate;
    const auto frames = static_cast<double>(testsignals::framesPerDay(rate));
    signal.start = testsignals::timeOfFrame(static_cast<std::int64_t>(random.uniform() * frames), rate);
    signal.offset = random.uniform(-0.4, 0.4);
    signal.level = random.uniform(-20, -3);
    signal.inverted = random.chance(0.5);
    if (random.chance(0.5))
        signal.userBits = static_cast<std::uint32_t>(random.bits());
    return signal;
}

Samples audioOf(const LtcSignal &signal, Random &random)
{
    return random.chance(0.5) ? testsignals::ltcAudio(signal) : testsignals::biphaseMarkAudio(signal);
}

Case monoCase(const LtcSignal &signal, Samples samples, Random &random, int bits)
{
    if (testsignals::largestMagnitude(samples) > 1.0)
        testsignals::scaleToPeak(samples, -0.1);
    testsignals::quantise(samples, random, bits);
    return {{std::move(samples)}, signal.sampleRate, Truth{signal, 0, true}};
}

} // namespace testrecordings
