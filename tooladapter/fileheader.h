// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/source.h"

#include <optional>
#include <string>

namespace tooladapter
{

/// What the media file at \a path says of itself, read from its header in a millisecond where the probe tool
/// takes a hundred. Nothing for a file that is not whole, and for one whose kind is not read here.
std::optional<Source> readFileHeader(const std::string &path);

} // namespace tooladapter
