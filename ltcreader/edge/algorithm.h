// SPDX-License-Identifier: MIT
#pragma once

namespace ltcreader
{

/// How the signal is turned into the square wave that LTC is.
enum class Algorithm {
    Automatic, ///< as the recording needs
    Low,       ///< level crossing with a low threshold: soft, uneven or very quiet recordings
    Mid,       ///< level crossing with a middle threshold: ordinary line recordings
    High,      ///< level crossing with a high threshold: ringing and small disturbances under a strong signal
    Slope,     ///< steepness of the signal: recordings with hum, rumble or a wandering middle
};

} // namespace ltcreader
