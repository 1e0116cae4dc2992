// SPDX-License-Identifier: MIT

// Each bit of LTC begins with a change of level. The sound's mean over the half bit before a moment times
// that over the half bit after it is therefore negative at every beginning of a bit, and of either sign in
// the middle: this product, taken at all moments (delay and multiply), swings with the bit rate. Its spectrum
// over the whole window shows a line at the bit rate that stands out long before single bits can be read, and
// the line's phase shows where bits begin. Followed in pieces of the window, the phase shows how the speed
// wanders.

#include "ltcreader/sync/clockrecovery.h"

#include "ltcreader/frame/codeword.h"
#include "ltcreader/maths/runningsums.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr double slowestBits = 1690.0; // [bits/s] 23.976 frames/s at -12 %
constexpr double fastestBits = 2690.0; // [bits/s] 30 frames/s at +12 %
constexpr std::array<double, 2> halfBits{1.0 / 3850.0,
                                         1.0 / 4700.0}; // [s] each good for its half of the rates
constexpr double leastStrength = 12.0;       // chance alone reaches this in one of a few recordings
constexpr double leastNominalStrength = 7.0; // near the rates of true machines, where chance has few places
constexpr double nominalReach = 0.0015;      // of the rate, to each side
constexpr std::array<double, 5> nominalRates{24.0 / 1.001, 24.0, 25.0, 30.0 / 1.001, 30.0}; // [frames/s]
constexpr double steadyBelow = 40.0;     // strength of a line whose phase in pieces of the window is noise
constexpr double meanReach = 60.0;       // [Hz] to each side, for the mean around a line
constexpr double sameLine = 2.0;         // [Hz] nearer peaks belong to one line
constexpr double knotTime = 0.125;       // [s]
constexpr std::size_t smoothedKnots = 2; // to each side
constexpr double leastPower = 1e-30;     // keeps quotients finite in silence

/// The product of the means over the half bits before and after each sample's beginning, sign changed.
std::vector<float> changes(const std::vector<double> &sums, double halfBit)
{
    const auto reach = static_cast<std::size_t>(halfBit);
    const double part = halfBit - static_cast<double>(reach);
    std::vector<float> result(sums.size());
    for (std::size_t i = reach + 1; i + reach + 1 < sums.size(); ++i) {
        const double before = sums[i] - sums[i - reach] + part * (sums[i - reach] - sums[i - reach - 1]);
        const double after = sums[i + reach] - sums[i] + part * (sums[i + reach + 1] - sums[i + reach]);
        result[i] = static_cast<float>(-before * after);
    }
    return result;
}

/// The strength that a line at \a frequency [Hz] must have, in a spectrum of bins of \a binWidth [Hz].
double leastStrengthAt(double frequency, double binWidth)
{
    const bool nominal = std::any_of(nominalRates.begin(), nominalRates.end(), [&](double rate) {
        const double bits = rate * bitsPerFrame;
        return std::abs(frequency - bits) < nominalReach * bits + 0.5 * binWidth;
    });
    return nominal ? leastNominalStrength : leastStrength;
}

struct Line {
    double frequency = 0.0; // [Hz]
    double strength = 0.0;
    std::size_t halfBit = 0; // index in halfBits
};

/// Lines in \a power, the power spectrum of the swing of half bit number \a halfBit.
void collectLines(const std::vector<float> &power, double binWidth, std::size_t halfBit,
                  std::vector<Line> &lines)
{
    const auto reach = static_cast<std::size_t>(meanReach / binWidth);
    const auto guard = std::max<std::size_t>(2, static_cast<std::size_t>(sameLine / binWidth));
    const std::vector<double> sums = runningSums(power);
    const auto first = static_cast<std::size_t>(slowestBits / binWidth);
    if (power.size() < reach + 2)
        return; // recorded at a rate that holds no timecode
    const auto last = std::min(static_cast<std::size_t>(fastestBits / binWidth), power.size() - reach - 2);
    for (std::size_t bin = first; bin < last; ++bin) {
        if (power[bin] < power[bin - 1] || power[bin] < power[bin + 1])
            continue;
        const double around = sums[bin + reach] - sums[bin - reach] - (sums[bin + guard] - sums[bin - guard]);
        const double mean = around / static_cast<double>(2 * (reach - guard)) + leastPower;
        const double strength = static_cast<double>(power[bin]) / mean;
        if (strength < leastStrengthAt(static_cast<double>(bin) * binWidth, binWidth))
            continue;
        // The top of the parabola through three magnitudes lies between the bins.
        const double left = std::sqrt(static_cast<double>(power[bin - 1]));
        const double right = std::sqrt(static_cast<double>(power[bin + 1]));
        const double curve = left - 2.0 * std::sqrt(static_cast<double>(power[bin])) + right;
        const double shift = curve < 0.0 ? 0.5 * (left - right) / curve : 0.0;
        lines.push_back({(static_cast<double>(bin) + shift) * binWidth, strength, halfBit});
    }
}

/// Lines in the spectra of both swings, of which a single transform makes both.
std::vector<Line> findLines(const std::array<std::vector<float>, 2> &swings, double sampleRate)
{
    // Bins of half the resolution of the window keep the loss between bins small.
    const std::size_t size = powerOfTwoFrom(swings[0].size() + swings[0].size() / 2);
    Spectrum spectrum(size);
    for (std::size_t i = 0; i < swings[0].size(); ++i)
        spectrum[i] = {swings[0][i], swings[1][i]};
    Fft::ofSize(size).forward(spectrum);
    const double binWidth = sampleRate / static_cast<double>(size);
    const auto bins =
        std::min(size / 2, static_cast<std::size_t>((fastestBits + 2.0 * meanReach) / binWidth));
    std::array<std::vector<float>, 2> powers{std::vector<float>(bins), std::vector<float>(bins)};
    for (std::size_t bin = 1; bin < bins; ++bin) {
        const std::complex<float> mirrored = std::conj(spectrum[size - bin]);
        powers[0][bin] = std::norm(spectrum[bin] + mirrored);
        powers[1][bin] = std::norm(spectrum[bin] - mirrored);
    }
    std::vector<Line> lines;
    for (std::size_t halfBit = 0; halfBit < powers.size(); ++halfBit)
        collectLines(powers[halfBit], binWidth, halfBit, lines);
    return lines;
}

/// The part of \a swing that turns with \a frequency [Hz], with its phase, in each of \a pieces equal pieces.
std::vector<std::complex<double>> phasesOfPieces(const std::vector<float> &swing, double frequency,
                                                 double sampleRate, std::size_t pieces)
{
    constexpr std::size_t renewal = 1024; // [samples] before rounding errors add up
    const double pieceLength = static_cast<double>(swing.size()) / static_cast<double>(pieces);
    const std::complex<double> turn = std::polar(1.0, -2.0 * std::numbers::pi * frequency / sampleRate);
    std::complex<double> phase = 1.0;
    std::vector<std::complex<double>> phases(pieces);
    for (std::size_t i = 0; i < swing.size(); ++i) {
        const auto piece =
            std::min(pieces - 1, static_cast<std::size_t>(static_cast<double>(i) / pieceLength));
        phases[piece] += phase * static_cast<double>(swing[i]);
        phase *= turn;
        if (i % renewal == renewal - 1)
            phase /= std::abs(phase);
    }
    return phases;
}

/// How many pieces the phase of a line is followed in through \a samples of \a sampleRate.
std::size_t piecesOf(std::size_t samples, double sampleRate)
{
    const double knots = static_cast<double>(samples) / (knotTime * sampleRate);
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(knots)));
}

/// The clock behind a line: its phase, followed through the window and smoothed over \a reach pieces to each
/// side.
Clock follow(const std::vector<float> &swing, const Line &line, double sampleRate, std::size_t reach)
{
    Clock clock;
    clock.bitLength = sampleRate / line.frequency;
    clock.strength = line.strength;
    const std::size_t pieces = piecesOf(swing.size(), sampleRate);
    clock.knotDistance = static_cast<double>(swing.size()) / static_cast<double>(pieces);
    const std::vector<std::complex<double>> phases =
        phasesOfPieces(swing, line.frequency, sampleRate, pieces);
    double before = 0.0;
    for (std::size_t piece = 0; piece < pieces; ++piece) {
        std::complex<double> smooth = 0.0;
        const std::size_t from = piece > reach ? piece - reach : 0;
        for (std::size_t i = from; i < std::min(pieces, piece + reach + 1); ++i)
            smooth += phases[i];
        // Value i of the swing belongs to the moment between samples i - 1 and i.
        double lateness = -std::arg(smooth) / (2.0 * std::numbers::pi) * clock.bitLength - 0.5;
        // A phase is known up to whole turns; the speed wanders by less than half of one between knots.
        if (piece > 0)
            lateness += clock.bitLength * std::round((before - lateness) / clock.bitLength);
        clock.knots.push_back(lateness);
        before = lateness;
    }
    return clock;
}

} // namespace

double Clock::position(double bit) const
{
    const double even = bit * bitLength;
    const double place = even / knotDistance - 0.5;
    const auto last = static_cast<double>(knots.size() - 1);
    const double held = std::clamp(place, 0.0, last);
    const auto knot = std::min(static_cast<std::size_t>(held), knots.size() - 1);
    const double part = held - static_cast<double>(knot);
    const double next = knots[std::min(knot + 1, knots.size() - 1)];
    return even + knots[knot] + part * (next - knots[knot]);
}

std::vector<Clock> recoverClocks(const FilteredSound &sound, std::size_t most)
{
    const std::vector<double> sums = runningSums(sound.samples);
    std::array<std::vector<float>, 2> swings;
    for (std::size_t i = 0; i < halfBits.size(); ++i)
        swings[i] = changes(sums, halfBits[i] * sound.sampleRate);
    std::vector<Line> lines = findLines(swings, sound.sampleRate);
    std::sort(lines.begin(), lines.end(),
              [](const Line &a, const Line &b) { return a.strength > b.strength; });
    std::vector<Clock> clocks;
    std::vector<double> taken;
    for (const Line &line : lines) {
        if (taken.size() == most)
            break;
        const bool known = std::any_of(taken.begin(), taken.end(), [&line](double frequency) {
            return std::abs(frequency - line.frequency) < sameLine;
        });
        if (known)
            continue;
        taken.push_back(line.frequency);
        const std::vector<float> &swing = swings[line.halfBit];
        const std::size_t pieces = piecesOf(swing.size(), sound.sampleRate);
        clocks.push_back(follow(swing, line, sound.sampleRate, smoothedKnots));
        if (line.strength < steadyBelow && pieces > 2 * smoothedKnots + 1)
            clocks.push_back(follow(swing, line, sound.sampleRate, pieces));
    }
    return clocks;
}

} // namespace ltcreader
