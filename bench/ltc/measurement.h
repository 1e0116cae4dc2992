// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/cases.h"
#include "bench/ltc/curves.h"
#include "testkit/signals/othersounds.h"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ltcbench
{

/// Who reads: the product's decoder, libltc with care, libltc after the best of some filters.
enum class Reader { Ours, Libltc, FilteredLibltc };
constexpr std::array<Reader, 3> allReaders{Reader::Ours, Reader::Libltc, Reader::FilteredLibltc};

std::optional<Answer> readWith(Reader reader, const Case &recording);

/// How much to measure.
struct Extent {
    std::uint64_t seed = 1;
    int filesPerGrade = 20;
    int filesPerSound = 200; ///< recordings without timecode of each kind
    bool compare = true;     ///< read with libltc too
};

/// What became of a number of recordings.
struct Tally {
    int right = 0;
    int wrong = 0;
    int refused = 0;
    // Of those that were answered, right or wrong:
    int otherRate = 0;                  ///< with another rate class than the timecode's own
    int otherCount = 0;                 ///< with another drop-frame flag
    int otherChannel = 0;               ///< read from another channel
    std::vector<double> positionErrors; ///< [samples] of the right ones whose speed is the nominal one

    int answers() const { return right + wrong; }
    int files() const { return right + wrong + refused; }
    double rightShare() const; ///< 0 to 1
    void add(const Case &recording, const std::optional<Answer> &answer);
    void add(const Tally &other);
};

using Tallies = std::map<Reader, Tally>;

struct CurveResult {
    Curve curve;
    std::vector<Tallies> grades; ///< as many as the curve has
};

struct SoundResult {
    std::string name;
    Tallies tallies; ///< refused is right, wrong is a timecode made out of nothing
};

/// CPU time of one kind of recording, a window of three seconds at 48 kHz.
struct CostResult {
    std::string name;
    double ours = 0.0;   ///< [ms] for one recording, mean
    double libltc = 0.0; ///< [ms] for one pass of libltc's decoder over one channel without filters
};

/// Called for every answer of ours that is wrong, with the name of the case as recordingNamed() takes it.
using ReportWrong =
    std::function<void(const std::string &caseName, const Case &recording, const Answer &answer)>;

/// Recording number \a file of a curve's grade number \a grade: the same for the same \a seed, and another
/// for each curve, grade and file.
Case recordingOf(const Curve &curve, std::uint64_t seed, std::size_t grade, int file);
Case recordingOf(const testsignals::OtherSound &sound, std::uint64_t seed, int file);

/// The name of that recording as recordingNamed() takes it; the grade of a sound is 0.
std::string nameOfRecording(const std::string &curveOrSound, std::size_t grade, int file);

/// The recording behind such a name; none where it fits nothing. Throws std::invalid_argument where its grade
/// or file is no number.
std::optional<Case> recordingNamed(const std::string &name, std::uint64_t seed);

CurveResult measureCurve(const Curve &curve, const Extent &extent, const ReportWrong &reportWrong);

SoundResult measureSound(const testsignals::OtherSound &sound, const Extent &extent,
                         const ReportWrong &reportWrong);

/// The CPU time of kinds of recordings that take the decoder different ways, extent.filesPerGrade of each.
std::vector<CostResult> measureCosts(const Extent &extent);

/// Where on the curve half of the files are read right, between the two grades around it, as a number of the
/// grade from 0 on; the last one where all grades are above half, none where even the first one is below.
std::optional<double> halfPosition(const CurveResult &result, Reader reader);

/// The grade at that place.
std::optional<double> halfPoint(const CurveResult &result, Reader reader);

} // namespace ltcbench
