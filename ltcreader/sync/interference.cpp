// SPDX-License-Identifier: MIT

// Where the front end takes out lines of a disturbance, the timecode loses them, too: each half bit leaves an
// echo as long as the lines are narrow. Labels repeat, so most of that is the same in every frame, and
// averaging does not lessen it. But it is known: the square wave that was decided for goes through the same
// filter, and what comes out, but for each half bit's own part, is interference.
//
// Levels that are wrong take away what would contradict them. So it matters how far two labels are apart
// behind the filter: the energy that it leaves of their difference (the metric of Ungerboeck's receiver).

#include "ltcreader/sync/interference.h"

#include "ltcreader/maths/runningsums.h"
#include "ltcreader/sync/integrateanddump.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

namespace ltcreader
{
namespace
{

constexpr double around = 30.0;     // [Hz] to each side: echoes of more than a third of a frame are long
constexpr double leastPower = 1e-9; // keeps quotients finite in silence

/// Square waves at the rate of the sound of \a candidate: of \a levels as real parts, of \a others as
/// imaginary parts.
Spectrum squareWaves(const Candidate &candidate, const std::vector<float> &levels,
                     const std::vector<float> &others)
{
    Spectrum wave(candidate.sound->samples.size());
    const auto end = static_cast<double>(wave.size());
    // A sample covers the time from half a sample before it to half a sample after it.
    const auto beginOf = [&](std::size_t half) {
        const double place = static_cast<double>(half) + candidate.grid.firstHalf;
        return std::clamp(candidate.clock.position(0.5 * place) + 0.5, 0.0, end);
    };
    double to = beginOf(0);
    for (std::size_t half = 0; half < levels.size(); ++half) {
        const double from = to;
        to = beginOf(half + 1);
        const std::complex<float> level(levels[half], others[half]);
        if (level == 0.0F)
            continue;
        for (auto i = static_cast<std::size_t>(from); static_cast<double>(i) < to; ++i) {
            const auto begin = static_cast<double>(i);
            const double share = std::min(to, begin + 1.0) - std::max(from, begin);
            wave[i] += static_cast<float>(share) * level;
        }
    }
    return wave;
}

template <typename Part>
std::vector<float> partsOf(const Spectrum &values, Part part)
{
    std::vector<float> parts;
    parts.reserve(values.size());
    for (const std::complex<float> value : values)
        parts.push_back(part(value));
    return parts;
}

std::vector<float> realParts(const Spectrum &values)
{
    return partsOf(values, [](std::complex<float> value) { return value.real(); });
}

std::vector<float> imaginaryParts(const Spectrum &values)
{
    return partsOf(values, [](std::complex<float> value) { return value.imag(); });
}

double dot(const std::vector<float> &a, const std::vector<float> &b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    return sum;
}

} // namespace

/// What comes out of the filter for given levels, scaled to the amplitude of the timecode.
struct Interference::Response {
    std::vector<float> wave;   ///< what went in
    std::vector<float> whole;  ///< all that comes out
    std::vector<float> echoes; ///< what frequencies that pass better or worse than those around add to that
};

Interference::Interference(const Candidate &candidate) : candidate(candidate), own(ownPart())
{
}

Candidate Interference::removed(const std::vector<float> &levels) const
{
    const Response response = responseTo(levels);
    const auto kept = static_cast<float>(own / (0.5 * candidate.clock.bitLength));
    std::vector<float> interference = response.whole;
    for (std::size_t i = 0; i < interference.size(); ++i)
        interference[i] -= kept * response.wave[i];
    return without(interference, false);
}

Candidate Interference::echoesRemoved(const std::vector<float> &levels) const
{
    // What neighbours do to each other stays, and the short inverse undoes it.
    return without(responseTo(levels).echoes, true);
}

std::vector<double> Interference::sharesLeft(const std::vector<float> &levels,
                                             const std::vector<std::vector<float>> &rivals) const
{
    const auto differenceTo = [&levels](const std::vector<float> &rival) {
        std::vector<float> difference;
        for (std::size_t i = 0; i < levels.size(); ++i)
            difference.push_back(levels[i] - rival[i]);
        return difference;
    };
    std::vector<double> shares;
    const auto add = [&](const std::vector<float> &difference, const std::vector<float> &samples) {
        const FrameGrid grid =
            cutIntoFrames(integrate(samples, candidate.clock, 0.0), candidate.grid.syncPlace());
        shares.push_back(dot(difference, grid.halves) / (own * dot(difference, difference) + leastPower));
    };
    const std::vector<float> &weights = candidate.sound->gains;
    const Spectrum gains(weights.begin(), weights.end());
    for (std::size_t i = 0; i < rivals.size(); i += 2) {
        // Two rivals share a transform.
        const std::vector<float> first = differenceTo(rivals[i]);
        const std::vector<float> second = differenceTo(rivals[std::min(i + 1, rivals.size() - 1)]);
        const Spectrum left = filtered(squareWaves(candidate, first, second), gains);
        add(first, realParts(left));
        if (i + 1 < rivals.size())
            add(second, imaginaryParts(left));
    }
    return shares;
}

Interference::Response Interference::responseTo(const std::vector<float> &levels) const
{
    const FilteredSound &sound = *candidate.sound;
    const std::vector<double> sums = runningSums(sound.gains);
    const auto reach =
        static_cast<std::size_t>(around * static_cast<double>(sound.transformSize) / sound.sampleRate);
    Spectrum gains; // echoes come out as imaginary parts
    for (std::size_t bin = 0; bin < sound.gains.size(); ++bin)
        gains.emplace_back(sound.gains[bin],
                           sound.gains[bin] - static_cast<float>(meanAround(sums, bin, reach)));
    const Spectrum wave = squareWaves(candidate, levels, std::vector<float>(levels.size()));
    const Spectrum left = filtered(wave, gains);
    Response response{realParts(wave), realParts(left), imaginaryParts(left)};
    const auto amplitude = static_cast<float>(dot(sound.samples, response.whole) /
                                              (dot(response.whole, response.whole) + leastPower));
    for (std::vector<float> *part : {&response.wave, &response.whole, &response.echoes}) {
        for (float &sample : *part)
            sample *= amplitude;
    }
    return response;
}

/// \a waves, real and imaginary parts, after what was done to the sound, but with \a gains for frequencies.
Spectrum Interference::filtered(Spectrum waves, const Spectrum &gains) const
{
    const FilteredSound &sound = *candidate.sound;
    waves.resize(sound.transformSize);
    Fft &fft = Fft::ofSize(sound.transformSize);
    fft.forward(waves);
    waves[0] = 0.0F;
    for (std::size_t bin = 1; bin <= waves.size() / 2; ++bin) {
        const std::complex<float> gain = bin < gains.size() ? gains[bin] : 0.0F;
        waves[bin] *= gain;
        if (bin < waves.size() - bin)
            waves[waves.size() - bin] *= gain;
    }
    fft.backward(waves);
    waves.resize(sound.samples.size());
    for (std::size_t i = 0; i < waves.size(); ++i)
        waves[i] /= sound.divisors[i];
    return waves;
}

/// The candidate without \a interference, cut anew; \a isEqualised: with the short inverse.
Candidate Interference::without(const std::vector<float> &interference, bool isEqualised) const
{
    auto sound = std::make_shared<FilteredSound>(*candidate.sound);
    for (std::size_t i = 0; i < interference.size(); ++i)
        sound->samples[i] -= interference[i];
    Candidate result = candidate;
    result.sound = std::move(sound);
    result.isEqualised = isEqualised;
    cutAgain(result);
    result.grid.isDecisionDirected = true;
    return result;
}

/// What comes out of the filter in a half bit that alone has a level of 1: the sum over all frequencies of
/// what passes of the half bit's spectrum.
double Interference::ownPart() const
{
    const FilteredSound &sound = *candidate.sound;
    double sum = 0.0;
    for (std::size_t bin = 1; bin < sound.gains.size(); ++bin) {
        const double turn =
            std::numbers::pi * static_cast<double>(bin) / static_cast<double>(sound.transformSize);
        const double half = std::sin(turn * 0.5 * candidate.clock.bitLength) / turn;
        sum += 2.0 * static_cast<double>(sound.gains[bin]) * half * half;
    }
    double weights = 0.0;
    for (const float divisor : sound.divisors)
        weights += 1.0 / static_cast<double>(divisor);
    return sum * weights / static_cast<double>(sound.divisors.size());
}

} // namespace ltcreader
