// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tooladapter
{

/// The content \a written of a metadata chunk ("LIST" called "INFO"), with those entries of \a source behind
/// it whose names it does not have. What is damaged in \a source is left out; \a written is kept as it is.
std::string mergedInfo(const std::string &written, const std::string &source);

} // namespace tooladapter
