// SPDX-License-Identifier: MIT
// POSIX: looks at files as the shell does before it starts them.
#include "tooladapter/posix/toolsearch.h"

#include <algorithm>
#include <cctype>

#include <sys/stat.h>
#include <unistd.h>

namespace tooladapter
{
namespace
{

bool isExecutableFile(const std::string &path, struct stat &status)
{
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

} // namespace

std::string toolNameOf(std::string_view programPath)
{
    std::string name{programPath.substr(programPath.rfind('/') + 1)};
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    if (name.ends_with(".exe"))
        name.erase(name.size() - 4);
    return name;
}

std::string findTool(const std::string &tool, std::string_view searchPath, const std::string &ownPath)
{
    struct stat own = {};
    const bool ownIsKnown = stat(ownPath.c_str(), &own) == 0;

    while (!searchPath.empty()) {
        const std::string_view folder = searchPath.substr(0, searchPath.find(':'));
        searchPath.remove_prefix(std::min(searchPath.size(), folder.size() + 1));
        if (!folder.starts_with('/'))
            continue;
        std::string candidate = std::string{folder} + '/' + tool;
        struct stat found = {};
        if (!isExecutableFile(candidate, found))
            continue;
        if (ownIsKnown && found.st_dev == own.st_dev && found.st_ino == own.st_ino)
            continue;
        return candidate;
    }
    return {};
}

} // namespace tooladapter
