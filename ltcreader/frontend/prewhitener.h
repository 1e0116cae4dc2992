// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/maths/fft.h"

#include <vector>

namespace ltcreader
{

/// What is done to a recording before its bits are summed up.
enum class FrontEnd {
    Flat,     ///< nothing but a limit to the band of LTC
    Whitened, ///< each frequency is weighed by how little else is there
    Equalised ///< what filters did to the spectrum of LTC is undone
};

/// Sound at a low rate, ready for summing.
struct FilteredSound {
    std::vector<float> samples;
    double sampleRate = 0.0;       ///< [Hz]
    std::vector<double> weights;   ///< of frequencies, one for each weightStep from 0 on; empty: all alike
    std::size_t transformSize = 0; ///< of the transform in which it was filtered
    std::vector<float> gains;    ///< of its frequencies from 0 on; those above were removed. Only of Whitened
    std::vector<float> divisors; ///< of the samples, after that
};

constexpr double weightStep = 25.0; // [Hz]

/// Filters one recording before its bits are summed up: as a matched filter for coloured noise does, or as an
/// equaliser. Prepares it in several ways. None of them delays it.
class Prewhitener
{
public:
    /// \a samples at \a sampleRate [Hz].
    Prewhitener(const std::vector<float> &samples, int sampleRate);

    /// \a frameRate [frames/s] as recorded, 0 while it is not known: lines in the spectrum that repeat with
    /// it are the timecode's own.
    FilteredSound prepare(FrontEnd frontEnd, double frameRate = 0.0) const;

private:
    void estimateDisturbance();
    std::vector<float> disturbance(double frameRate) const;
    std::vector<double> meanPowers() const;
    std::vector<double> meanWeights(const std::vector<float> &powers, std::size_t lowest) const;

    std::size_t length;        ///< [samples]
    double sampleRate;         ///< [Hz]
    double binWidth = 0.0;     ///< [Hz]
    Spectrum spectrum;         ///< of the recording, from 0 to the highest frequency that is kept
    std::vector<float> peaks;  ///< power at each frequency, the largest of three bins
    std::vector<float> smooth; ///< power between single lines
    float tolerable = 0.0F;    ///< power that the timecode itself may have between its lines
};

} // namespace ltcreader
