// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/recordings/cases.h"

#include "ltcreader/decoder/decoder.h"

#include <array>

namespace ltcbench
{

using namespace testrecordings;

/// What the product's decoder says in full.
ltcreader::Outcome outcomeOf(const Case &recording);
Answer answerOf(const ltcreader::Reading &reading);

/// The product's decoder.
std::optional<Answer> readWithOurs(const Case &recording);

/// libltc's decoder used with care: each channel brought to full scale without its mean, and an answer only
/// from three or more frames that count up one by one; the longest such run of all channels wins. The rate
/// comes from its length.
std::optional<Answer> readWithLibltc(const Case &recording);

/// The same after each of some simple filters (none, band-pass, mean over half a bit, low-pass, integration),
/// longest run of all.
std::optional<Answer> readWithFilteredLibltc(const Case &recording);

/// Decodes the first channel with libltc and throws the frames away: the time that libltc itself needs.
void decodePlainly(const Case &recording);

struct Reader {
    const char *title;
    std::optional<Answer> (*read)(const Case &recording);
};

/// Ours first.
inline constexpr std::array<Reader, 3> allReaders{
    {{"LTCReader", readWithOurs}, {"libltc", readWithLibltc}, {"libltc, filtered", readWithFilteredLibltc}}};

} // namespace ltcbench
