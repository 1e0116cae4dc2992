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

LikelihoodRatios AlternativeLines::ratiosOf(const Change &change) const
{
    LikelihoodRatios ratios;
    for (std::size_t frame = 0; frame < labels.size(); ++frame) {
        const PartValues other = change(labels[frame], static_cast<int>(frame));
        ratios.push_back(evidence[frame].logLikelihood(other) - likelihoods[frame]);
    }
    return ratios;
}

Alternatives AlternativeLines::nearCounts() const
{
    Alternatives others{Doubt::Jump, {}};
    const std::int64_t second = line.rate.base;
    const std::int64_t minute = secondsPerMinute * second;
    const std::int64_t hour = framesPerDay(line.rate) / 24;
    for (const std::int64_t distance : {std::int64_t{1}, std::int64_t{2}, second, minute, hour}) {
        for (const std::int64_t count : {line.count - distance, line.count + distance}) {
            const std::vector<PartValues> near = labelsFrom(count);
            others.ratios.push_back(ratiosOf(
                [&](const PartValues &, int frame) { return near[static_cast<std::size_t>(frame)]; }));
        }
    }
    return others;
}

Alternatives AlternativeLines::otherNumbers() const
{
    Alternatives others{Doubt::Jump, {}};
    for (int shift = 1; shift < line.rate.base; ++shift) {
        others.ratios.push_back(ratiosOf([&](PartValues values, int) {
            const int number = 10 * values[FrameTensPart] + values[FrameUnitsPart];
            return withNumber(values, (number + shift) % line.rate.base);
        }));
    }
    return others;
}

Alternatives AlternativeLines::otherSeconds() const
{
    Alternatives others{Doubt::Jump, {}};
    for (int shift = 1; shift < secondsPerMinute; ++shift) {
        others.ratios.push_back(ratiosOf([&](PartValues values, int) {
            const int second =
                (10 * values[SecondTensPart] + values[SecondUnitsPart] + shift) % secondsPerMinute;
            values[SecondUnitsPart] = second % 10;
            values[SecondTensPart] = second / 10;
            return values;
        }));
    }
    return others;
}

Alternatives AlternativeLines::otherValues(std::size_t part) const
{
    Alternatives others{Doubt::Jump, {}};
    for (int shift = 1; shift < 1 << parts[part].width; ++shift) {
        others.ratios.push_back(ratiosOf([&](PartValues values, int) {
            values[part] = (values[part] + shift) % (1 << parts[part].width);
            return values;
        }));
    }
    return others;
}

Alternatives AlternativeLines::otherMotions() const
{
    Alternatives others{Doubt::Frozen, {}};
    for (int number = 0; number < line.rate.base; ++number)
        others.ratios.push_back(ratiosOf([&](PartValues values, int) { return withNumber(values, number); }));
    for (int number = 0; number < line.rate.base; ++number) {
        others.ratios.push_back(ratiosOf([&](PartValues values, int frame) {
            return withNumber(values, ((number - frame) % line.rate.base + line.rate.base) % line.rate.base);
        }));
        for (const int held : {2, 3}) {
            for (int phase = 0; phase < held; ++phase) {
                others.ratios.push_back(ratiosOf([&](PartValues values, int frame) {
                    return withNumber(values, (number + (frame + phase) / held) % line.rate.base);
                }));
            }
        }
    }
    return others;
}

std::vector<Alternatives> AlternativeLines::digits() const
{
    std::vector<Alternatives> lines{otherNumbers(), otherSeconds()};
    for (std::size_t part = 0; part < partCount; ++part) {
        if (part != FlagPart || line.rate.base == 30)
            lines.push_back(otherValues(part));
    }
    return lines;
}

} // namespace ltcreader
