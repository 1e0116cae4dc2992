// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/curves.h"
#include "tests/support/othersounds.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ltcbench
{

/// Recording number \a file of a curve's grade number \a grade: the same for the same \a seed, and another
/// for each curve, grade and file.
Case recordingOf(const Curve &curve, std::uint64_t seed, std::size_t grade, std::uint64_t file);
Case recordingOf(const testsignals::OtherSound &sound, std::uint64_t seed, std::uint64_t file);

/// The name of that recording as recordingNamed() takes it; the grade of a sound is 0.
std::string nameOfRecording(const std::string &curveOrSound, std::size_t grade, std::uint64_t file);

/// The recording behind such a name; none where it fits nothing. Throws std::invalid_argument where its grade
/// or file is no number.
std::optional<Case> recordingNamed(const std::string &name, std::uint64_t seed);

/// Writes \a recording as a WAV file of 24 bits.
void save(const Case &recording, const std::string &path);

/// A kind of recording whose reading is timed.
struct CostKind {
    std::string name;
    std::function<Case(Random &random)> make;
};

/// Windows of three seconds at 48 kHz that take the decoder different ways.
std::vector<CostKind> costKinds();

} // namespace ltcbench
