// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/cases.h"

#include <functional>
#include <string>
#include <vector>

namespace ltcbench
{

/// One kind of impairment in rising grades.
struct Curve {
    std::string section; ///< groups curves in tables and plots
    std::string name;
    std::string unit;           ///< of the grades, for people
    std::vector<double> grades; ///< from harmless to hopeless where `graded`
    bool graded = true;         ///< false: the grades are choices of equal standing, without a 50 % point
    std::function<Case(double grade, Random &random)> make;
};

std::vector<Curve> curvesOfNoise();     ///< noises, hum, speech, music, a radio channel
std::vector<Curve> curvesOfSignals();   ///< level, clipping, gain control, filters, spikes, offset
std::vector<Curve> curvesOfCodecs();    ///< through the real ffmpeg; only codecs whose encoder is there
std::vector<Curve> curvesOfTransport(); ///< speed, wow, flutter, dropouts, late starts, jumps
std::vector<Curve> curvesOfFormats(); ///< sample rates, sample sizes, channels, lengths, crosstalk, odd bits
std::vector<Curve> curvesOfCombinations(); ///< several at once, as cameras and recorders make them

/// All of them in the order above; made once, as the search for encoders takes its time.
const std::vector<Curve> &allCurves();

/// What a wireless link does to timecode: narrow band, fading, noise that grows where the signal fades. \a
/// grade 1 to 8.
void wirelessLink(Samples &samples, int sampleRate, double grade, Random &random);

/// \a first, then one \a step after the other to \a last, both included.
std::vector<double> gradesFrom(double first, double last, double step);

} // namespace ltcbench
