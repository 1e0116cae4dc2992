// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tooladapter
{

/// A program of the machine and the words it is given.
struct Command {
    std::string program; ///< absolute path
    std::vector<std::string> arguments;
};

/// Replaces this process by \a command. Comes back only when it cannot be started, with the exit code for
/// that.
int become(const Command &command);

/// Runs \a command with this process's own input and output and returns its exit code; 128 and the signal's
/// number for one that was killed. The child dies with this process, however this process dies.
int run(const Command &command);

/// Like run(), with the standard output of \a command appended to \a output.
int capture(const Command &command, std::string &output);

} // namespace tooladapter
