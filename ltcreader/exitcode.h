// SPDX-License-Identifier: MIT
#pragma once

namespace ltcreader
{

/// How a run of the program ended. The numbers are what callers know.
enum class ExitCode {
    Found = 0,
    NoFile = 100,               ///< no recording was named
    UnknownFormat = 101,        ///< output other than JSON and TEXT
    UnknownSwitch = 102,        ///< or a switch whose value makes no sense
    UnknownAlgorithm = 103,     ///< none of LOW, MID, HIGH and SLOPE
    CannotOpen = 201,           ///< no such file, or it may not be read
    ChannelOutOfRange = 202,    ///< the recording has no such channel
    UnsupportedFrameRate = 203, ///< no rate of LTC
    NotASoundFile = 204,        ///< the file can be opened but holds no sound that can be read
    NotFound = 205              ///< no timecode beyond doubt
};

} // namespace ltcreader
