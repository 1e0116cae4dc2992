// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/argumentlist.h"
#include "tooladapter/rules/source.h"

namespace tooladapter
{

/// The list that extracts what \a list means from \a source, of which nothing need be known. Every file
/// begins where the source does, with silence where its sound begins later. Throws Refusal when \a list maps
/// no audio stream, or none that begins within longestSilence.
ArgumentList rewriteExtraction(ArgumentList list, const Source &source);

} // namespace tooladapter
