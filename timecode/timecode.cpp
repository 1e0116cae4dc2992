// SPDX-License-Identifier: MIT
#include "timecode/timecode.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace timecode
{
namespace
{

constexpr int droppedLabels = 2;    // left out at the start of a minute
constexpr int minutesPerCycle = 10; // only every tenth minute keeps all its labels
constexpr int secondsPerMinute = 60;
constexpr int minutesPerDay = 24 * 60;

int framesPerMinute(const Rate &rate)
{
    return rate.base * secondsPerMinute;
}

} // namespace

double Rate::framesPerSecond() const
{
    return ntsc ? ntscSpeed(base) : base;
}

std::string fraction(std::int64_t base, bool ntsc)
{
    return ntsc ? std::to_string(base * 1000) + "/1001" : std::to_string(base) + "/1";
}

std::int64_t framesPerDay(const Rate &rate)
{
    const std::int64_t all = std::int64_t{framesPerMinute(rate)} * minutesPerDay;
    const std::int64_t droppingMinutes = minutesPerDay - minutesPerDay / minutesPerCycle;
    return rate.dropFrame ? all - droppedLabels * droppingMinutes : all;
}

bool isLabel(const Label &label, const Rate &rate)
{
    const bool inRange = label.hours >= 0 && label.hours < 24 && label.minutes >= 0 && label.minutes < 60 &&
                         label.seconds >= 0 && label.seconds < 60 && label.frames >= 0 &&
                         label.frames < rate.base;
    const bool dropped = rate.dropFrame && label.frames < droppedLabels && label.seconds == 0 &&
                         label.minutes % minutesPerCycle != 0;
    return inRange && !dropped;
}

std::int64_t frameCount(const Label &label, const Rate &rate)
{
    const std::int64_t minutes = label.hours * 60 + label.minutes;
    const std::int64_t count = (minutes * secondsPerMinute + label.seconds) * rate.base + label.frames;
    return rate.dropFrame ? count - droppedLabels * (minutes - minutes / minutesPerCycle) : count;
}

Label labelAt(std::int64_t count, const Rate &rate)
{
    const std::int64_t day = framesPerDay(rate);
    count = (count % day + day) % day;
    if (rate.dropFrame) {
        const int fullMinute = framesPerMinute(rate);
        const int cycle = fullMinute * minutesPerCycle - droppedLabels * (minutesPerCycle - 1);
        const std::int64_t cycles = count / cycle;
        const std::int64_t rest = count % cycle;
        // The first minute of a cycle is whole; each later one begins with the labels that are left out.
        const std::int64_t begun =
            rest < fullMinute ? 0 : 1 + (rest - fullMinute) / (fullMinute - droppedLabels);
        count += droppedLabels * ((minutesPerCycle - 1) * cycles + begun);
    }
    const std::int64_t seconds = count / rate.base;
    Label label;
    label.frames = static_cast<int>(count % rate.base);
    label.seconds = static_cast<int>(seconds % 60);
    label.minutes = static_cast<int>(seconds / 60 % 60);
    label.hours = static_cast<int>(seconds / 3600);
    return label;
}

std::int64_t samplesAt(double frames, const Rate &rate, int sampleRate)
{
    const auto day = static_cast<double>(framesPerDay(rate));
    double inDay = std::fmod(frames, day);
    if (inDay < 0.0)
        inDay += day;
    const std::int64_t samples = std::llround(inDay * sampleRate / rate.framesPerSecond());
    const auto samplesPerDay =
        static_cast<std::int64_t>(std::ceil(day * sampleRate / rate.framesPerSecond()));
    return samples >= samplesPerDay ? 0 : samples;
}

std::string toText(const Label &label, bool dropFrame)
{
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d%c%02d", label.hours, label.minutes, label.seconds,
                  dropFrame ? ';' : ':', label.frames);
    return text.data();
}

} // namespace timecode
