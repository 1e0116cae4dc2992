// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/chunks/wavefacts.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tooladapter
{

/// The time reference [samples since midnight] in the content of a "bext" chunk; nothing for one that is too
/// short for its fields.
std::optional<std::uint64_t> timeReferenceOf(const std::string &bext);

/// The content \a source of a "bext" chunk for a file with \a changes, which starts at \a start [samples
/// since midnight]. All fields are kept but the time reference and, in the description, the value of a word
/// "sSPEED=". Nothing if \a source is too short for its fields.
std::optional<std::string> changedBext(const std::string &source, const WaveChanges &changes,
                                       std::uint64_t start);

/// \a text with \a speed as the value of its words "sSPEED=" (any lower-case letter before "SPEED=").
std::string withSpeed(std::string text, const std::string &speed);

} // namespace tooladapter
