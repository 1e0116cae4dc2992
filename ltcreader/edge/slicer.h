// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/edge.h"

#include <cstddef>
#include <vector>

namespace ltcreader
{

/// Turns a signal into a square wave by comparing it with its own recent extremes.
///
/// State carries over between calls: blocks of any size give the same edges.
class Slicer
{
public:
    /// \a threshold: distance from the middle of the signal, as a share of its half swing, 0 to 1, that must
    /// be passed for the level to change. \a longestRise [s]: how far before that the crossing of the middle
    /// may lie to count as the moment of the edge. \a sampleRate [Hz].
    Slicer(double threshold, double longestRise, int sampleRate);

    /// Appends the level changes in \a samples, \a count values that follow the earlier ones.
    void process(const float *samples, std::size_t count, std::vector<Edge> &edges);

private:
    double edgePosition(float previous, float level, float sample) const;

    float threshold;    ///< share of the half swing
    float decay;        ///< share of the swing by which the extremes approach each other in one sample
    double longestRise; ///< [samples] a crossing of the middle that is older than this is another event
    float upper = 0.0F; ///< decaying maximum
    float lower = 0.0F; ///< decaying minimum
    float last = 0.0F;  ///< the sample before
    double middleCrossing = -1.0e9; ///< [samples] the last crossing of the middle, towards the other level
    std::size_t position = 0;       ///< [samples] handled so far
    bool high = false;              ///< the level
};

/// The steepness of a signal: each sample minus the one a short fixed time before.
///
/// Slow movements (hum, rumble, a wandering middle) vanish; each level change becomes a pulse of its own
/// sign.
class SlopeFilter
{
public:
    /// \a sampleRate [Hz].
    explicit SlopeFilter(int sampleRate);

    /// Replaces \a samples, \a count values that follow the earlier ones, by their slopes.
    void process(float *samples, std::size_t count);

private:
    std::vector<float> history; ///< the last values, oldest at next
    std::size_t next = 0;
    bool started = false;
};

} // namespace ltcreader
