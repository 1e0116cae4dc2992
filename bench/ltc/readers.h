// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/cases.h"

#include "ltcreader/decoder.h"

namespace ltcbench
{

/// The product's decoder.
std::optional<Answer> readWithOurs(const Case &recording, const ltcreader::Settings &settings = {});

} // namespace ltcbench
