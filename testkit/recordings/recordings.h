// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/recordings/curves.h"

#include <cstdint>
#include <optional>
#include <string>

namespace testrecordings
{

/// Sounds without timecode, each a curve of one grade.
const std::vector<Curve> &allSounds();

/// Windows of three seconds at 48 kHz whose reading is timed, as they take the decoder different ways; each a
/// curve of one grade.
std::vector<Curve> costKinds();

/// Recording number \a file of a curve's grade number \a grade: the same for the same \a seed, and another
/// for each curve, grade and file.
Case recordingOf(const Curve &curve, std::uint64_t seed, std::size_t grade, std::uint64_t file);

/// The name of that recording as recordingNamed() takes it.
std::string nameOfRecording(const Curve &curve, std::size_t grade, std::uint64_t file);

/// The recording behind such a name; none where it fits nothing. Throws std::invalid_argument where its grade
/// or file is no number.
std::optional<Case> recordingNamed(const std::string &name, std::uint64_t seed);

/// Writes \a recording as a WAV file of 24 bits.
void save(const Case &recording, const std::string &path);

} // namespace testrecordings
