// SPDX-License-Identifier: MIT
// Replaces the media tools "ffmpeg" and "ffprobe" under the names "ffmpeg.exe" and "ffprobe.exe": corrects
// the argument lists that the tools would misread and starts the real tool.
#include "tooladapter/adapter.h"
#include "tooladapter/rules/refusal.h"

#include <exception>
#include <iostream>

int main(int argc, char **argv)
{
    constexpr int refusedCode = 2;
    constexpr int missingCode = 127; // as the shell has it
    try {
        return tooladapter::runAs(argv[0], {argv + 1, argv + argc});
    } catch (const tooladapter::ToolMissing &problem) {
        std::cerr << argv[0] << ": " << problem.what() << '\n';
        return missingCode;
    } catch (const std::exception &problem) {
        std::cerr << argv[0] << ": " << problem.what() << '\n';
        return refusedCode;
    }
}
