// SPDX-License-Identifier: MIT

// LTC is a square wave, but recorders hand it on with soft edges, a shifted middle and a level that moves.
// The slicer follows the signal's recent maximum and minimum, which drift towards each other so that they
// forget old peaks. The level changes only when the signal passes the threshold on the far side: disturbances
// smaller than twice the threshold make no edges, and a signal of which only the spikes at the edges are left
// is read as the square wave that it was. The moment of an edge is the crossing of the middle where that
// belongs to the same rise, because it does not depend on the threshold.

#include "ltcreader/edge/slicer.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double memory = 0.008;       // [s] of the extremes: some fifteen bits, less than a swell of hum
constexpr float smallestSwing = 4e-5F; // [full scale] a little more than one step of 16 bit
constexpr double slopeTime = 6e-5;     // [s] a third of the shortest half bit: the full height of soft edges

} // namespace

Slicer::Slicer(double threshold, double longestRise, int sampleRate)
    : threshold(static_cast<float>(threshold)),
      decay(static_cast<float>(std::min(0.5, 1.0 / (memory * sampleRate)))),
      longestRise(longestRise * sampleRate)
{
}

double Slicer::edgePosition(float previous, float level, float sample) const
{
    const double step = double{sample} - double{previous};
    const double part = step == 0.0 ? 0.0 : std::clamp((double{level} - double{previous}) / step, 0.0, 1.0);
    return static_cast<double>(position) - 1.0 + part;
}

void Slicer::process(const float *samples, std::size_t count, std::vector<Edge> &edges)
{
    for (std::size_t i = 0; i < count; ++i, ++position) {
        const float sample = samples[i];
        if (position == 0)
            upper = lower = last = sample;
        const float swing = upper - lower;
        upper = std::max(sample, upper - decay * swing);
        lower = std::min(sample, lower + decay * swing);
        const float middle = 0.5F * (upper + lower);
        const float reach = 0.5F * threshold * (upper - lower);
        const float sign = high ? -1.0F : 1.0F;
        // Seen from the present level: above zero means on the way to the other one.
        const float before = sign * (last - middle);
        const float now = sign * (sample - middle);
        if (before <= 0.0F && now > 0.0F)
            middleCrossing = edgePosition(last, middle, sample);
        if (now > reach && upper - lower > smallestSwing) {
            const double passed = edgePosition(last, middle + sign * reach, sample);
            high = !high;
            edges.push_back({passed - middleCrossing <= longestRise ? middleCrossing : passed, high});
        }
        last = sample;
    }
}

SlopeFilter::SlopeFilter(int sampleRate)
    : history(static_cast<std::size_t>(std::max(1L, std::lround(slopeTime * sampleRate))))
{
}

void SlopeFilter::process(float *samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (!started) {
            std::fill(history.begin(), history.end(), samples[i]);
            started = true;
        }
        const float earlier = history[next];
        history[next] = samples[i];
        next = next + 1 == history.size() ? 0 : next + 1;
        samples[i] -= earlier;
    }
}

} // namespace ltcreader
