// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/ltcsignal.h"

#include <bitset>
#include <cstdint>
#include <functional>

namespace testsignals
{

constexpr std::size_t bitsPerFrame = 80;

/// How the machine that plays the timecode runs: its speed is 1 + `deviation`, swinging by two sines around
/// it.
struct Transport {
    double deviation = 0.0;       ///< as a share: 0.1 is ten per cent fast
    double wowDepth = 0.0;        ///< largest deviation as a share
    double wowFrequency = 1.0;    ///< [Hz]
    double flutterDepth = 0.0;    ///< largest deviation as a share
    double flutterFrequency = 12; ///< [Hz]
};

/// Liberties that generators take with the bits.
struct FrameHabits {
    bool userBitsChange =
        false;                ///< other user bits in every frame, as when a date and a reel number take turns
    bool parityWrong = false; ///< the phase correction bit is always the wrong one
};

/// The 80 bits of one frame in the order in which they are sent, as SMPTE 12M lays them out: binary-coded
/// digits, user bits, drop-frame flag, and the phase correction bit that makes the number of zeros even.
std::bitset<bitsPerFrame> frameBits(LtcTime time, LtcRate rate, std::uint32_t userBits);

/// The place of the bit that makes the number of zeros in a frame even.
std::size_t phaseCorrectionBit(LtcRate rate);

/// The bits of the frame \a index frames after the signal's `start`, at any index.
using BitsOfFrame = std::function<std::bitset<bitsPerFrame>(std::int64_t index)>;

/// Timecode whose frames say what \a bitsOf makes them say, at the rate, position and level of \a signal.
std::vector<float> biphaseMarkAudio(const LtcSignal &signal, const Transport &transport,
                                    const BitsOfFrame &bitsOf);

/// The same signal as ltcAudio(), made without libltc: to check one against the other, and for what libltc's
/// encoder cannot do. At speeds other than 1 the first sample still lies `offset` frames into `start`.
std::vector<float> biphaseMarkAudio(const LtcSignal &signal, const Transport &transport = {},
                                    const FrameHabits &habits = {});

} // namespace testsignals
