// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/wavefacts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace tooladapter
{
namespace
{

constexpr std::array ltcRates{FrameRate{24000, 1001}, FrameRate{24, 1}, FrameRate{25, 1},
                              FrameRate{30000, 1001}, FrameRate{30, 1}};

/// The rate of LTC nearest to the number that \a speed begins with; an invalid one if none is near.
FrameRate rateOf(const std::string &speed)
{
    constexpr double tolerance = 0.5; // [frames/s]
    const double found = std::strtod(speed.c_str(), nullptr);
    const auto distance = [found](const FrameRate &rate) { return std::abs(rate.perSecond() - found); };
    const auto *const nearest = std::min_element(
        ltcRates.begin(), ltcRates.end(),
        [distance](const FrameRate &a, const FrameRate &b) { return distance(a) < distance(b); });
    return distance(*nearest) <= tolerance ? *nearest : FrameRate{};
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
