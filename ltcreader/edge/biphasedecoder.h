// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/edge/edge.h"
#include "ltcreader/edge/frame.h"

#include <array>
#include <cstdint>
#include <vector>

namespace ltcreader
{

/// Turns edges into bits and bits into frames, following the speed of the recording.
class BiphaseDecoder
{
public:
    /// \a sampleRate [Hz].
    explicit BiphaseDecoder(int sampleRate);

    /// Takes the next \a edge; appends to \a frames when it completes one.
    void process(const Edge &edge, std::vector<Frame> &frames);

private:
    Frame heldFrame() const;
    void bit(bool one, const Edge &end, double squaredDeviation);
    void loseBits();

    struct Bit {
        double start = 0.0;            ///< [samples]
        double squaredDeviation = 0.0; ///< [bits squared] of its edges from where they belong
        bool startsRising = false;
    };

    double nominalBit;                       ///< [samples] middle of the range of all rates
    double bitLength;                        ///< [samples] as recorded, followed slowly
    double shortest;                         ///< [samples] half a bit; nearer edges are disturbances
    double longest;                          ///< [samples] a bit; farther ones end a gap
    Edge last{-1.0e9, false};                ///< the edge before
    Edge bitStart;                           ///< edge that began the bit under way
    bool halfDone = false;                   ///< the bit under way is a one, its first half has passed
    double halfDeviation = 0.0;              ///< [bits squared] of its edge
    std::array<Bit, bitsPerFrame> history{}; ///< the last bits, a ring
    std::size_t next = 0;                    ///< where the ring continues; its oldest bit
    int heldBits = 0;                        ///< bits since the last error, up to a frame
    FrameBits dataWindow = 0;                ///< the 64 bits before the sync window
    std::uint16_t syncWindow = 0;            ///< the last 16 bits
};

} // namespace ltcreader
