// SPDX-License-Identifier: MIT

// Frames could simply be added up, were it not for the polarity: every zero changes it for all that follows,
// and the frame number that counts up has now more, now fewer zeros. For an assumed numbering these changes
// are known and can be undone; then all frames of a second are the same waveform, and seventy-five frames
// lift it out of the noise by almost nineteen decibels. The phase correction bit, which makes the number of
// zeros of a frame even, would undo the order for the bits after it: those are counted from the end of the
// frame instead.

#include "ltcreader/framefold.h"

#include "ltcreader/likelihood.h"
#include "ltcreader/trellis.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

constexpr double syncHalves = 2.0 * syncBits;
constexpr double least = 0.05; // amplitude below which no sync word helps
constexpr double most = 0.95;  // amplitude above which the rest is the recording's doing, not noise

} // namespace

Polarities findPolarities(const FrameGrid &grid)
{
    double sum = 0.0;
    double squares = 0.0;
    double count = 0.0;
    for (const float sync : grid.syncs) {
        sum += static_cast<double>(sync);
        squares += static_cast<double>(sync) * static_cast<double>(sync);
        count += sync != 0.0F ? 1.0 : 0.0;
    }
    count = std::max(1.0, count);
    const double steadyAmplitude = std::abs(sum) / (syncHalves * count);
    const double freeAmplitude = std::sqrt(std::max(0.0, squares / count - syncHalves)) / syncHalves;
    Polarities result;
    result.amplitude = std::max(steadyAmplitude, freeAmplitude);
    const double held = std::clamp(result.amplitude, least, most);
    const double scale = held / (1.0 - held * held); // from resemblance to log-likelihood
    double freeLikelihood = 0.0;
    for (const float sync : grid.syncs)
        freeLikelihood += logCosh(scale * static_cast<double>(sync));
    const bool steady = logCosh(scale * sum) >= freeLikelihood;
    for (const float sync : grid.syncs) {
        const double evidence = steady ? sum : static_cast<double>(sync);
        result.atSync.push_back(static_cast<float>(std::tanh(scale * evidence)));
    }
    // The sync word has three zeros: it ends with the other polarity.
    result.atStart.push_back(steady ? -result.atSync.front() : 0.0F);
    for (std::size_t frame = 1; frame < grid.syncs.size(); ++frame) {
        result.atStart.push_back(-result.atSync[frame - 1]);
    }
    return result;
}

FrameFold foldFrames(const FrameGrid &grid, const Polarities &polarities, const FrameNumbering &numbering,
                     int correctionBit)
{
    FrameFold fold;
    fold.seconds.resize(static_cast<std::size_t>(secondsTouched(numbering, grid.frames)));
    for (int frame = 0; frame < grid.frames; ++frame) {
        const auto [second, number] = placeOf(numbering, frame);
        const float *halves = grid.frame(frame);
        SecondSum &sum = fold.seconds[static_cast<std::size_t>(second)];
        const auto add = [&sum, halves](int fromBit, int toBit, float sign) {
            for (int half = 2 * fromBit; half < 2 * toBit; ++half) {
                sum[static_cast<std::size_t>(half)] += sign * halves[half];
            }
        };
        float polarity = polarities.atStart[static_cast<std::size_t>(frame)];
        fold.unitsFit += polarity * resemblance(halves, number % 10, 4);
        polarity *= polarityAfter(number % 10, 4);
        add(4, 8, polarity);
        fold.tensFit += polarity * resemblance(halves + 16, number / 10, 2);
        polarity *= polarityAfter(number / 10, 2);
        add(10, correctionBit, polarity);
        add(correctionBit + 1, dataBits, polarities.atSync[static_cast<std::size_t>(frame)]);
    }
    return fold;
}

} // namespace ltcreader
