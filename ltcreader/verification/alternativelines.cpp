// SPDX-License-Identifier: MIT
#include "ltcreader/verification/alternativelines.h"

#include <utility>

namespace ltcreader
{
namespace
{

constexpr int secondsPerMinute = 60;

PartValues withNumber(PartValues values, int number)
{
    values[FrameUnitsPart] = number % 10;
    values[FrameTensPart] = number / 10;
    return values;
}

} // namespace

AlternativeLines::AlternativeLines(const LabelLine &line, Evidence evidence)
    : evidence(std::move(evidence)), line(line), labels(labelsFrom(line.count))
{
    for (std::size_t frame = 0; frame < labels.size(); ++frame)
        likelihoods.push_back(this->evidence[frame].logLikelihood(labels[frame]));
}

std::size_t AlternativeLines::frames() const
{
    return labels.size();
}

std::vector<PartValues> AlternativeLines::labelsFrom(std::int64_t count) const
{
    std::vector<PartValues> values;
    for (std::size_t frame = 0; frame < evidence.size(); ++frame)
        values.push_back(valuesOf(labelAt(count + static_cast<int>(frame), line.rate), line.rate.dropFrame));
    return values;
}

Gains AlternativeLines::gainsOf(const Change &change) const
{
    Gains gains;
    for (std::size_t frame = 0; frame < labels.size(); ++frame) {
        const PartValues other = change(labels[frame], static_cast<int>(frame));
        gains.push_back(evidence[frame].logLikelihood(other) - likelihoods[frame]);
    }
    return gains;
}

Rivals AlternativeLines::nearCounts() const
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

Rivals AlternativeLines::otherNumbers() const
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

Rivals AlternativeLines::otherSeconds() const
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

Rivals AlternativeLines::otherValues(std::size_t part) const
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

Rivals AlternativeLines::otherMotions() const
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

std::vector<Rivals> AlternativeLines::digits() const
{
    std::vector<Rivals> lines{otherNumbers(), otherSeconds()};
    for (std::size_t part = 0; part < partCount; ++part) {
        if (part != FlagPart || line.rate.base == 30)
            lines.push_back(otherValues(part));
    }
    return lines;
}

} // namespace ltcreader
