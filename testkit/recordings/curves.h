// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/recordings/cases.h"
#include "testkit/signals/impairments.h"

#include <functional>
#include <string>
#include <vector>

namespace testrecordings
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

/// Noise, signals, codecs, transport, formats, combinations. Made once, as the search for encoders takes its
/// time.
const std::vector<Curve> &allCurves();

/// Those about sample rates, sample sizes, channels, lengths, crosstalk and odd bits.
std::vector<Curve> curvesOfFormats();

// What disturbs timecode at 48 kHz; decibels are the timecode over what is added.

void addWhite(Samples &samples, double decibels, Random &random);

template <Samples (*make)(Random &random, std::size_t count, int sampleRate)>
void add(Samples &samples, double decibels, Random &random)
{
    testsignals::addAtRatio(samples, make(random, samples.size(), 48000), decibels);
}

/// White noise; it and the timecode have passed the channel before their powers are compared.
void addInRadioChannel(Samples &samples, double decibels, Random &random);

/// A wireless link: narrow band, fading, noise that grows where the signal fades. \a grade 1 to 8.
void wirelessLink(Samples &samples, double grade, Random &random);

/// \a first, then one \a step after the other to \a last, both included.
std::vector<double> gradesFrom(double first, double last, double step);

} // namespace testrecordings
