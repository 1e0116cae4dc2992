// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/cases.h"

#include "ltcreader/decoder/decoder.h"

namespace ltcbench
{

/// What the product's decoder says in full.
ltcreader::Outcome outcomeOf(const Case &recording, const ltcreader::Settings &settings = {});
Answer answerOf(const ltcreader::Reading &reading);

/// The product's decoder.
std::optional<Answer> readWithOurs(const Case &recording, const ltcreader::Settings &settings = {});

} // namespace ltcbench
