// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/wavefacts.h"

#include "timecode/timecode.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace tooladapter
{
namespace
{

/// The rate of LTC nearest to the number that \a speed begins with; an invalid one if none is near.
FrameRate rateOf(const std::string &speed)
{
    constexpr double tolerance = 0.5; // [frames/s]
    const double found = std::strtod(speed.c_str(), nullptr);
    const auto distance = [found](const timecode::Rate &rate) {
        return std::abs(rate.framesPerSecond() - found);
    };
    const auto *const nearest = std::min_element(
        timecode::rates.begin(), timecode::rates.end(),
        [distance](const timecode::Rate &a, const timecode::Rate &b) { return distance(a) < distance(b); });
    return distance(*nearest) <= tolerance
               ? FrameRate::fromText(timecode::fraction(nearest->base, nearest->ntsc))
               : FrameRate{};
}

} // namespace

WaveChanges waveChangesOf(const ExportPlan &plan, const FrameRate &timecodeRate)
{
    constexpr std::string_view speedPrefix = "sSPEED=";
    WaveChanges changes;
    changes.setsStart = noteIn(plan.metadata, "time_reference").has_value();
    const std::string comment = noteIn(plan.metadata, "comment").value_or(std::string());
    if (comment.starts_with(speedPrefix))
        changes.speed = comment.substr(speedPrefix.size());
    changes.rate = timecodeRate.isValid() ? timecodeRate : rateOf(changes.speed);
    if (!plan.tracks.empty())
        changes.keptChannels = plan.tracks.front().channels;
    return changes;
}

} // namespace tooladapter
