// SPDX-License-Identifier: MIT
#include "testkit/signals/ltctime.h"

#include <array>
#include <cstdio>

namespace testsignals
{

namespace
{
constexpr int droppedLabels = 2;        // in a minute that drops
constexpr int minutesPerDropCycle = 10; // the first minute of which drops nothing
constexpr int minutesPerDay = 24 * 60;
} // namespace

double framesPerSecond(LtcRate rate)
{
    return rate.ntsc ? rate.base * 1000.0 / 1001.0 : rate.base;
}

double samplesPerFrame(LtcRate rate, int sampleRate)
{
    return rate.ntsc ? sampleRate * 1001.0 / (rate.base * 1000.0)
                     : static_cast<double>(sampleRate) / rate.base;
}

std::int64_t framesPerDay(LtcRate rate)
{
    const std::int64_t labels = std::int64_t{minutesPerDay} * 60 * rate.base;
    if (!rate.dropFrame)
        return labels;
    return labels - std::int64_t{droppedLabels} * (minutesPerDay - minutesPerDay / minutesPerDropCycle);
}

std::int64_t frameNumber(LtcTime time, LtcRate rate)
{
    const std::int64_t minutes = std::int64_t{time.hours} * 60 + time.minutes;
    const std::int64_t labels = (minutes * 60 + time.seconds) * rate.base + time.frames;
    if (!rate.dropFrame)
        return labels;
    return labels - droppedLabels * (minutes - minutes / minutesPerDropCycle);
}

LtcTime timeOfFrame(std::int64_t number, LtcRate rate)
{
    const std::int64_t day = framesPerDay(rate);
    std::int64_t label = ((number % day) + day) % day;
    if (rate.dropFrame) {
        const std::int64_t fullMinute = std::int64_t{60} * rate.base;
        const std::int64_t cycle =
            minutesPerDropCycle * fullMinute - std::int64_t{droppedLabels} * (minutesPerDropCycle - 1);
        const std::int64_t cycles = label / cycle;
        const std::int64_t inCycle = label % cycle;
        std::int64_t dropped = cycles * droppedLabels * (minutesPerDropCycle - 1);
        if (inCycle >= fullMinute)
            dropped += droppedLabels * (1 + (inCycle - fullMinute) / (fullMinute - droppedLabels));
        label += dropped;
    }
    const auto seconds = static_cast<int>(label / rate.base);
    return {seconds / 3600, seconds / 60 % 60, seconds % 60, static_cast<int>(label % rate.base)};
}

std::string text(LtcTime time, LtcRate rate)
{
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%02d:%02d:%02d%c%02d", time.hours, time.minutes,
                  time.seconds, rate.dropFrame ? ';' : ':', time.frames);
    return buffer.data();
}

} // namespace testsignals
