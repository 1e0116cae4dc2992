// SPDX-License-Identifier: MIT

// Frames could simply be added up, were it not for the polarity: every zero changes it for all that follows,
// and the frame number that counts up has now more, now fewer zeros. For an assumed numbering these changes
// are known and can be undone; then all frames of a second are the same waveform, and seventy-five frames
// lift it out of the noise by almost nineteen decibels. The phase correction bit, which makes the number of
// zeros of a frame even, would undo the order for the bits after it: those are counted from the end of the
// frame instead.

#include "ltcreader/decision/coherentaverage.h"

#include "ltcreader/decision/likelihood.h"
#include "ltcreader/decision/viterbi.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

/// The amplitude of the sync words whose correlations are \a syncs and add up to \a sum: from their sum where
/// the polarity is steady, from their squares (noise has a square of one for each half bit) where it is not.
double amplitudeOf(const std::vector<float> &syncs, double sum)
{
    constexpr double halves = 2.0 * syncBits;
    double squares = 0.0;
    double count = 0.0; // of frames whose sync word is in the recording
    for (const float sync : syncs) {
        squares += static_cast<double>(sync) * static_cast<double>(sync);
        count += sync != 0.0F ? 1.0 : 0.0;
    }
    count = std::max(1.0, count);
    const double steadyAmplitude = std::abs(sum) / (halves * count);
    const double freeAmplitude = std::sqrt(std::max(0.0, squares / count - halves)) / halves;
    return std::max(steadyAmplitude, freeAmplitude);
}

/// Polarities by \a evidence, the log-likelihood ratio of both polarities for each sync word.
Polarities polaritiesBy(const std::vector<double> &evidence)
{
    Polarities result;
    for (const double ratio : evidence)
        result.atSync.push_back(static_cast<float>(std::tanh(ratio)));
    // The sync word has three zeros: it ends with the other polarity, which is that of the frame that
    // follows.
    result.atStart.push_back(0.0F);
    for (std::size_t frame = 1; frame < evidence.size(); ++frame)
        result.atStart.push_back(-result.atSync[frame - 1]);
    return result;
}

} // namespace

std::vector<Polarities> possiblePolarities(const FrameGrid &grid)
{
    double sum = 0.0;
    for (const float sync : grid.syncs)
        sum += static_cast<double>(sync);
    const double amplitude = amplitudeOf(grid.syncs, sum);
    const double held = believableAmplitude(amplitude);
    const double scale = held / (1.0 - held * held); // from correlation to log-likelihood
    std::vector<double> evidence;
    for (const float sync : grid.syncs)
        evidence.push_back(scale * static_cast<double>(sync));
    // Most encoders begin all frames with the same polarity: all sync words together then show that of each.
    Polarities steady = polaritiesBy(std::vector<double>(evidence.size(), scale * sum));
    steady.atStart.front() = -steady.atSync.front();
    steady.amplitude = amplitude;
    steady.syncFit = logCosh(scale * sum) / scale;
    Polarities free = polaritiesBy(evidence);
    free.amplitude = amplitude;
    for (const double ratio : evidence)
        free.syncFit += logCosh(ratio) / scale;
    if (steady.syncFit >= free.syncFit)
        return {std::move(steady)};
    return {std::move(free), std::move(steady)};
}

CoherentAverage averageFrames(const FrameGrid &grid, const Polarities &polarities,
                              const FrameNumbering &numbering, int correctionBit)
{
    CoherentAverage average;
    average.seconds.resize(static_cast<std::size_t>(secondsTouched(numbering, grid.frames)));
    for (int frame = 0; frame < grid.frames; ++frame) {
        const auto [second, number] = placeOf(numbering, frame);
        const float *halves = grid.frame(frame);
        SecondSum &sum = average.seconds[static_cast<std::size_t>(second)];
        const auto add = [&sum, halves](int fromBit, int toBit, float sign) {
            for (int half = 2 * fromBit; half < 2 * toBit; ++half) {
                sum[static_cast<std::size_t>(half)] += sign * halves[half];
            }
        };
        float polarity = polarities.atStart[static_cast<std::size_t>(frame)];
        const auto addNumber = [&polarity, halves](BitField part, int value, float &fit) {
            fit += polarity * correlation(halvesOf(halves, part.first), value, part.width);
            polarity *= polarityAfter(value, part.width);
        };
        addNumber(field::frameUnits, number % 10, average.unitsFit);
        add(field::frameUnits.end(), field::frameTens.first, polarity);
        addNumber(field::frameTens, number / 10, average.tensFit);
        add(field::frameTens.end(), correctionBit, polarity);
        add(correctionBit + 1, dataBits, polarities.atSync[static_cast<std::size_t>(frame)]);
    }
    return average;
}

} // namespace ltcreader
