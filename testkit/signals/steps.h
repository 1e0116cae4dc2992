// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace testsignals
{

/// Draws a signal of two levels from the positions of its level changes, band-limited to the sample rate. A
/// level change passes half-way exactly at its position, wherever that lies between samples, and causes no
/// delay.
class StepRenderer
{
public:
    /// \a riseTime in seconds from 10 % to 90 %.
    StepRenderer(int sampleRate, double riseTime);

    /// Samples 0..\a count - 1 of a signal that is at minus \a height before the first of the rising \a
    /// positions (in samples, may be outside the range) and changes its sign at each. Negative \a height
    /// inverts.
    std::vector<float> render(const std::vector<double> &positions, std::size_t count, double height) const;

    /// Level changes as far as this outside the range still show in it. [samples]
    double reach() const { return halfWidth; }

private:
    double stepAt(double distance) const;

    double halfWidth;          ///< [samples] the step is flat farther away from its position
    std::vector<double> table; ///< the step from 0 to 1 over -halfWidth..halfWidth
};

} // namespace testsignals
