// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/frontend/prewhitener.h"

#include <cstddef>
#include <vector>

namespace ltcreader
{

/// Where the bits of a recording begin, as a line that may bend slowly.
struct Clock {
    double bitLength = 0.0;    ///< [filtered samples] mean
    double knotDistance = 0.0; ///< [filtered samples] between two knots
    std::vector<double> knots; ///< [filtered samples] lateness of bits around each knot's time
    double strength = 0.0;     ///< power of its spectral line over the mean around it

    /// [filtered samples] where bit \a bit (any number, with parts) begins.
    double position(double bit) const;
};

/// The clocks that \a sound may follow, those of the strongest line first; of at most \a most lines, none
/// when there is no sign of any. A weak line makes two: one that wanders with its phase, and a steady one.
std::vector<Clock> recoverClocks(const FilteredSound &sound, std::size_t most);

} // namespace ltcreader
