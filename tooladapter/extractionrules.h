// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/argumentlist.h"

namespace tooladapter
{

/// The list that extracts what \a list means. Throws Refusal when \a list maps no audio stream.
ArgumentList rewriteExtraction(ArgumentList list);

} // namespace tooladapter
