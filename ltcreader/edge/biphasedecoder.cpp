// SPDX-License-Identifier: MIT

// In biphase mark code every bit begins with an edge, and a one has a second edge in its middle. At all frame
// rates and speeds within 13 % of them the longest half bit is shorter than the shortest bit, so a single
// distance shows which it is even before the speed is known; from then on the measured length decides. Two
// halves make a one; half a bit followed by a whole one means that an edge was lost or added, and the count
// of bits starts again.

#include "ltcreader/edge/biphasedecoder.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double slowestBits = 24 * 1000.0 / 1001.0 * bitsPerFrame; // [bits/s]
constexpr double fastestBits = 30.0 * bitsPerFrame;                 // [bits/s]
constexpr double speedTolerance = 0.13;  // tape and film speeds, with room for uneven edges
constexpr double earliestEdge = 0.6;     // of the shortest half bit: disturbed edges come that early
constexpr double latestEdge = 1.2;       // of the longest bit: and that late
constexpr double halfFromWhole = 0.75;   // [bits] between half a bit and a bit
constexpr double following = 1.0 / 12.0; // share of a new length in the measured one

} // namespace

BiphaseDecoder::BiphaseDecoder(int sampleRate)
    : nominalBit(sampleRate / std::sqrt(slowestBits * fastestBits)),
      bitLength(nominalBit),
      shortest(0.5 * sampleRate / (fastestBits * (1.0 + speedTolerance)) * earliestEdge),
      longest(sampleRate / (slowestBits * (1.0 - speedTolerance)) * latestEdge)
{
}

void BiphaseDecoder::loseBits()
{
    heldBits = 0;
    halfDone = false;
    dataWindow = 0;
    syncWindow = 0;
}

void BiphaseDecoder::process(const Edge &edge, std::vector<Frame> &frames)
{
    const double distance = edge.position - last.position;
    last = edge;
    if (distance < shortest || distance > longest) {
        loseBits();
        bitLength = nominalBit;
        bitStart = edge;
        return;
    }
    const bool half = distance < halfFromWhole * bitLength;
    const double length = half ? 2.0 * distance : distance;
    const double deviation = (half ? 0.5 : 1.0) * (length / bitLength - 1.0); // [bits]
    bitLength += following * (length - bitLength);
    if (half && !halfDone) {
        halfDone = true;
        halfDeviation = deviation * deviation;
        return;
    }
    if (!half && halfDone) {
        // The half that came before belonged to a bit whose start was missed.
        loseBits();
        bitStart = edge;
        return;
    }
    bit(half, edge, half ? halfDeviation + deviation * deviation : deviation * deviation);
    halfDone = false;
    if (heldBits == bitsPerFrame && syncWindow == syncWord) {
        frames.push_back(heldFrame());
    }
}

Frame BiphaseDecoder::heldFrame() const
{
    // The least squares line through all bits: single edges lie.
    constexpr double middle = 0.5 * (bitsPerFrame - 1);
    constexpr double squares = bitsPerFrame * (bitsPerFrame * bitsPerFrame - 1.0) / 12.0;
    double mean = 0.0;
    double products = 0.0;
    double deviations = 0.0;
    double most = 0.0;
    for (std::size_t i = 0; i < history.size(); ++i) {
        const Bit &held = history[(next + i) % history.size()];
        mean += held.start / bitsPerFrame;
        products += (static_cast<double>(i) - middle) * held.start;
        deviations += held.squaredDeviation;
        most = std::max(most, held.squaredDeviation);
    }
    const double slope = products / squares;
    const double start = mean - middle * slope;
    return {dataWindow,
            start,
            start + bitsPerFrame * slope,
            std::sqrt(deviations / bitsPerFrame),
            std::sqrt(most),
            history[next].startsRising};
}

void BiphaseDecoder::bit(bool one, const Edge &end, double squaredDeviation)
{
    dataWindow = dataWindow >> 1 | FrameBits{syncWindow & 1U} << (dataBits - 1);
    syncWindow = static_cast<std::uint16_t>(syncWindow >> 1 | (one ? 1U << (syncBits - 1) : 0U));
    history[next] = {bitStart.position, squaredDeviation, bitStart.rising};
    next = (next + 1) % history.size();
    if (heldBits < bitsPerFrame)
        ++heldBits;
    bitStart = end;
}

} // namespace ltcreader
