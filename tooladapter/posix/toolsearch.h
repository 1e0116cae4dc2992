// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tooladapter
{

/// The tool that a program called \a programPath stands for: its base name without ".exe", in lower case.
std::string toolNameOf(std::string_view programPath);

/// The absolute path of the first executable file called \a tool in \a searchPath (folders separated by ":"),
/// or an empty text. Relative folders are skipped, and so is every name of the program at \a ownPath: the
/// search must not find the searcher.
std::string findTool(const std::string &tool, std::string_view searchPath, const std::string &ownPath);

} // namespace tooladapter
