// SPDX-License-Identifier: MIT

// The best way to find a known waveform in coloured noise, the matched filter, is to weigh each frequency by
// the signal's strength over the noise's power and then to correlate. What LTC's strength is we know well
// enough: it lives between some 150 Hz and 8 kHz. The noise's power must be estimated from the recording
// itself. Deep in noise nearly all power is noise, so the smoothed power spectrum serves: mean logarithms
// over a few dozen hertz give the floor between single lines, and lines that stand out of it (hum, music,
// whistles) are brought down to it. With little noise that would take the timecode's own spectrum for noise;
// then the flat front end is the better one, and the clock shows which of them saw more.
//
// What timecode repeats in every frame makes lines as well, at multiples of the frame rate. They carry most
// of what is to be read and must stay: once the clock has given the frame rate, lines that fall on it are
// spared, unless they are much stronger than their like.
//
// All is done on the spectrum of the whole window with weights without phase, so nothing is shifted in time.

#include "ltcreader/frontend/prewhitener.h"

#include "ltcreader/frontend/minimumphase.h"
#include "ltcreader/maths/runningsums.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr double lowestFrequency = 150.0;   // [Hz] below it LTC has nothing that distinguishes bits
constexpr double highestFrequency = 8000.0; // [Hz] above it 7 to 10 % of a square wave's power is left
constexpr double lowestRate = 20000.0;      // [Hz] of the filtered sound: eight samples in a half bit or more
constexpr double taperTime = 0.01;          // [s] of fading at both ends, against the edges' own spectrum
constexpr double smoothing = 30.0;          // [Hz] to each side, over which the floor is averaged
constexpr float lineExcess = 10.0F;         // a bin this far above the floor is a line, not chance
constexpr double meanOverLogMean = 1.781;   // of exponentially distributed power: exp(Euler's constant)
constexpr double bandFrom = 600.0;          // [Hz] most of what distinguishes bits is between here
constexpr double bandTo = 4500.0;           // [Hz] and here
constexpr double quietPart = 0.25;          // of that band is taken for free of disturbances
constexpr float tolerated = 4.0F;           // times the power there: what LTC's own spectrum reaches
constexpr double lineWidth = 0.8;           // [Hz] to each side of a line of the timecode itself
constexpr double ownPart = 0.75;            // of the timecode's lines are weaker than this one,
constexpr float ownExcess = 8.0F;           // and none is so many times stronger
constexpr double evenTime = 0.02;           // [s] to each side, over which power is taken
constexpr double quietShare = 0.1;          // of the mean power: quieter moments are not raised further
constexpr double gainReach = 150.0;  // [Hz] to each side, over which power is taken to recognise filters by
constexpr float leastPower = 1e-20F; // keeps logarithms finite in silence
constexpr double leastMean = 1e-30;  // keeps quotients finite in silence

/// The factor at sample \a i of \a length that fades in and out by raised cosines, \a width samples at each
/// end.
float taper(std::size_t i, std::size_t length, std::size_t width)
{
    const std::size_t distance = std::min(i, length - 1 - i);
    if (distance >= width)
        return 1.0F;
    const double part = (static_cast<double>(distance) + 0.5) / static_cast<double>(width);
    return static_cast<float>(0.5 - 0.5 * std::cos(std::numbers::pi * part));
}

bool inTimecodeBand(double frequency)
{
    return frequency > bandFrom && frequency < bandTo;
}

/// The value in \a values below which the share \a part of them lies; 1 when there is none.
float quantile(std::vector<float> &values, double part)
{
    if (values.empty())
        return 1.0F;
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

/// Weighs each moment by the power around it, so that claps and words count for no more than they show.
void evenOut(FilteredSound &sound)
{
    const std::vector<double> sums = runningSums(sound.samples, [](float sample) {
        return static_cast<double>(sample) * static_cast<double>(sample);
    });
    const auto count = static_cast<double>(std::max<std::size_t>(1, sound.samples.size()));
    const double quiet = quietShare * sums.back() / count + leastMean;
    const auto reach = static_cast<std::size_t>(evenTime * sound.sampleRate);
    sound.divisors.reserve(sound.samples.size());
    for (std::size_t i = 0; i < sound.samples.size(); ++i) {
        sound.divisors.push_back(static_cast<float>(meanAround(sums, i, reach) + quiet));
        sound.samples[i] /= sound.divisors.back();
    }
}

} // namespace

Prewhitener::Prewhitener(const std::vector<float> &samples, int rate)
    : length(samples.size()), sampleRate(rate)
{
    const std::size_t size = powerOfTwoFrom(length);
    const auto width =
        std::max<std::size_t>(1, std::min(static_cast<std::size_t>(taperTime * rate), length / 20));
    double mean = 0.0;
    for (const float sample : samples)
        mean += static_cast<double>(sample) / static_cast<double>(length);
    spectrum.assign(size, {});
    for (std::size_t i = 0; i < length; ++i) {
        spectrum[i] = (samples[i] - static_cast<float>(mean)) * taper(i, length, width);
    }
    Fft::ofSize(size).forward(spectrum);
    binWidth = sampleRate / static_cast<double>(size);
    const auto bins = static_cast<std::size_t>(highestFrequency / binWidth);
    spectrum.resize(std::min(bins, size / 2));
    estimateDisturbance();
}

void Prewhitener::estimateDisturbance()
{
    const std::size_t bins = spectrum.size();
    std::vector<float> power(bins);
    for (std::size_t bin = 0; bin < bins; ++bin)
        power[bin] = std::norm(spectrum[bin]) + leastPower;
    const std::vector<double> logSums = runningSums(power, [](float value) { return std::log(value); });
    peaks.resize(bins);
    smooth.resize(bins);
    const auto reach = std::max<std::size_t>(1, static_cast<std::size_t>(smoothing / binWidth));
    std::vector<float> inBand;
    for (std::size_t bin = 0; bin < bins; ++bin) {
        smooth[bin] = static_cast<float>(meanOverLogMean * std::exp(meanAround(logSums, bin, reach)));
        peaks[bin] =
            std::max({power[bin], bin > 0 ? power[bin - 1] : 0.0F, bin + 1 < bins ? power[bin + 1] : 0.0F});
        if (inTimecodeBand(static_cast<double>(bin) * binWidth))
            inBand.push_back(smooth[bin]);
    }
    tolerable = tolerated * quantile(inBand, quietPart);
}

/// The power at each frequency that is to be brought down.
std::vector<float> Prewhitener::disturbance(double frameRate) const
{
    const std::size_t bins = spectrum.size();
    const auto ownLine = [&](std::size_t bin) {
        const double frequency = static_cast<double>(bin) * binWidth;
        return frameRate > 0.0 && std::abs(std::remainder(frequency, 0.5 * frameRate)) < lineWidth;
    };
    float highestOwn = 0.0F;
    if (frameRate > 0.0) {
        std::vector<float> own;
        for (std::size_t bin = 0; bin < bins; ++bin) {
            if (ownLine(bin) && inTimecodeBand(static_cast<double>(bin) * binWidth))
                own.push_back(peaks[bin]);
        }
        highestOwn = ownExcess * quantile(own, ownPart);
    }
    std::vector<float> result(bins);
    for (std::size_t bin = 0; bin < bins; ++bin) {
        result[bin] = std::max(smooth[bin], tolerable);
        const bool line = peaks[bin] > lineExcess * smooth[bin];
        if (line && ownLine(bin)) {
            result[bin] *= std::max(1.0F, peaks[bin] / highestOwn);
        } else if (line) {
            result[bin] = std::max(peaks[bin], tolerable);
        }
    }
    return result;
}

std::vector<double> Prewhitener::meanWeights(const std::vector<float> &powers, std::size_t lowest) const
{
    std::vector<double> sums;
    std::vector<double> counts;
    for (std::size_t bin = 0; bin < powers.size(); ++bin) {
        const auto step = static_cast<std::size_t>(static_cast<double>(bin) * binWidth / weightStep);
        sums.resize(step + 1);
        counts.resize(step + 1);
        if (bin >= lowest)
            sums[step] += 1.0 / static_cast<double>(powers[bin]);
        counts[step] += 1.0;
    }
    for (std::size_t step = 0; step < sums.size(); ++step)
        sums[step] /= std::max(1.0, counts[step]);
    return sums;
}

std::vector<double> Prewhitener::meanPowers() const
{
    const std::vector<double> sums =
        runningSums(spectrum, [](std::complex<float> value) { return std::norm(value); });
    const auto reach = std::max<std::size_t>(1, static_cast<std::size_t>(gainReach / binWidth));
    std::vector<double> powers;
    for (std::size_t step = 0;; ++step) {
        const auto bin = static_cast<std::size_t>(static_cast<double>(step) * gainStep / binWidth);
        if (bin >= spectrum.size())
            return powers;
        powers.push_back(meanAround(sums, bin, reach));
    }
}

FilteredSound Prewhitener::prepare(FrontEnd frontEnd, double frameRate) const
{
    std::size_t size = powerOfTwoFrom(length);
    double rate = sampleRate;
    while (rate >= 2.0 * lowestRate) {
        rate /= 2.0;
        size /= 2;
    }
    Spectrum values(size);
    FilteredSound result;
    result.transformSize = size;
    const std::vector<float> powers =
        frontEnd == FrontEnd::Whitened ? disturbance(frameRate) : std::vector<float>();
    const std::vector<std::complex<float>> gains = frontEnd == FrontEnd::Equalised
                                                       ? minimumPhaseGains(meanPowers())
                                                       : std::vector<std::complex<float>>();
    const auto lowest = static_cast<std::size_t>(lowestFrequency / binWidth);
    for (std::size_t bin = lowest; bin < std::min(spectrum.size(), size / 2); ++bin) {
        std::complex<float> weight = 1.0F;
        if (frontEnd == FrontEnd::Whitened)
            weight = 1.0F / powers[bin];
        if (frontEnd == FrontEnd::Equalised)
            weight = gains[static_cast<std::size_t>(static_cast<double>(bin) * binWidth / gainStep)];
        values[bin] = spectrum[bin] * weight;
    }
    Fft::ofSize(size).backward(values);
    if (frontEnd == FrontEnd::Whitened) {
        result.weights = meanWeights(powers, lowest);
        result.gains.resize(std::min(spectrum.size(), size / 2));
        for (std::size_t bin = lowest; bin < result.gains.size(); ++bin)
            result.gains[bin] = 1.0F / powers[bin];
    }
    result.sampleRate = rate;
    const auto count = static_cast<std::size_t>(static_cast<double>(length) * rate / sampleRate);
    result.samples.resize(std::min(count, size));
    for (std::size_t i = 0; i < result.samples.size(); ++i)
        result.samples[i] = values[i].real();
    evenOut(result);
    return result;
}

} // namespace ltcreader
