// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tooladapter
{

/// Does what the program called \a ownPath was asked to do with \a arguments, and returns its exit code. Does
/// not return where the real tool takes this process over. Throws Refusal if no correct file could come of
/// the arguments, and where the file that was written is not complete.
int runAs(const std::string &ownPath, const std::vector<std::string> &arguments);

} // namespace tooladapter
