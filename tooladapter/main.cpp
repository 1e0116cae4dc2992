// SPDX-License-Identifier: MIT
// Stands for the media tools "ffmpeg" and "ffprobe" under the names "ffmpeg.exe" and "ffprobe.exe": mends the
// argument lists that the tools would misread and replaces itself with the real tool.
#include "tooladapter/extractionrules.h"
#include "tooladapter/rewriting.h"
#include "tooladapter/toolsearch.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <cerrno>
#include <unistd.h>

namespace
{

constexpr int refusedCode = 2;    // no right file could come of the list
constexpr int notFoundCode = 127; // as the shell has it

using Arguments = std::vector<std::string>;

std::string environment(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

/// Replaces this process by \a tool; comes back only with an error.
int replaceWith(const std::string &tool, const Arguments &arguments)
{
    std::vector<char *> words{const_cast<char *>(tool.c_str())};
    for (const std::string &argument : arguments)
        words.push_back(const_cast<char *>(argument.c_str()));
    words.push_back(nullptr);
    execv(tool.c_str(), words.data());
    std::cerr << tool << ": cannot be started: " << std::strerror(errno) << '\n';
    return notFoundCode;
}

Arguments mended(const Arguments &arguments)
{
    const auto list = tooladapter::parseArguments(arguments);
    if (list && tooladapter::jobOf(*list) == tooladapter::Job::Extraction)
        return tooladapter::renderArguments(tooladapter::rewriteExtraction(*list));
    return arguments;
}

int run(const std::string &ownName, const Arguments &arguments)
{
    const std::string toolName = tooladapter::toolNameOf(ownName);
    if (toolName != "ffmpeg" && toolName != "ffprobe") {
        std::cerr << ownName << ": stands for a media tool; call it as \"ffmpeg.exe\" or \"ffprobe.exe\"\n";
        return refusedCode;
    }
    const std::string tool = tooladapter::findTool(toolName, environment("PATH"), "/proc/self/exe");
    if (tool.empty()) {
        std::cerr << ownName << ": no program \"" << toolName
                  << "\" in PATH; install it, on Debian with \"apt install ffmpeg\"\n";
        return notFoundCode;
    }
    if (toolName == "ffprobe" || environment("OSTREL_TOOL_ADAPTER") == "off")
        return replaceWith(tool, arguments);
    return replaceWith(tool, mended(arguments));
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return run(argv[0], Arguments{argv + 1, argv + argc});
    } catch (const std::exception &problem) {
        std::cerr << argv[0] << ": " << problem.what() << '\n';
        return refusedCode;
    }
}
