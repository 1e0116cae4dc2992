// SPDX-License-Identifier: MIT
#pragma once

namespace ltcreader
{

/// Why a timecode is not answered.
enum class Doubt {
    None,          ///< it is proven
    NoTimecode,    ///< nothing in the recording resembles timecode
    TooNoisy,      ///< something does, but its label is not proven
    Frozen,        ///< all frames carry the same label
    Held,          ///< each label stays for several frames
    CountingDown,  ///< the recording plays backwards
    Jump,          ///< the labels jump, and no line of them is proven at the first sample
    TwoTimecodes,  ///< two ways of reading contradict each other
    IllegalLabels, ///< labels that no clock shows, such as second 61
    FalseFlag,     ///< labels exist that the drop-frame flag leaves out
    Speed,         ///< no machine runs that much too fast or too slow
    RateClass      ///< the recording is too short to distinguish 1000/1001 from the whole rate
};

/// Whether \a doubt says that frames carry something else, not that they are hard to read.
constexpr bool isOfLabels(Doubt doubt)
{
    return doubt != Doubt::None && doubt != Doubt::NoTimecode && doubt != Doubt::TooNoisy &&
           doubt != Doubt::RateClass;
}

} // namespace ltcreader
