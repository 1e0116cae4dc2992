// SPDX-License-Identifier: MIT
#pragma once

namespace ltcreader
{

/// A change of level of the square wave that the recording stands for.
struct Edge {
    double position = 0.0; ///< [samples] since the start of the recording, with a part of a sample
    bool rising = false;
};

} // namespace ltcreader
