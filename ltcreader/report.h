// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decoder/reading.h"

#include <string>

namespace ltcreader
{

/// \a reading as one JSON object on one line, with a line end. Numbers are written as in the C locale.
std::string toJson(const Reading &reading);

/// \a reading as lines for people.
std::string toText(const Reading &reading);

/// Name of \a algorithm as users choose it; "JOINT" for Automatic.
std::string nameOf(Algorithm algorithm);

} // namespace ltcreader
