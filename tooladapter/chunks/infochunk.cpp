// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/infochunk.h"

#include "tooladapter/chunks/wavechunks.h"

#include <set>
#include <vector>

namespace tooladapter
{
namespace
{

constexpr std::size_t nameLength = 4;
constexpr std::size_t headLength = 8; // of an entry: name and length

struct InfoEntry {
    std::string name;
    std::string text;
};

std::vector<InfoEntry> entriesOf(const std::string &info)
{
    std::vector<InfoEntry> entries;
    std::size_t position = nameLength; // "INFO"
    while (position + headLength <= info.size()) {
        const std::uint64_t length = numberAt(info, position + 4, 4);
        const std::size_t begin = position + headLength;
        const std::string name = info.substr(position, nameLength);
        if (length > info.size() - begin || !isChunkName(name))
            break;
        entries.push_back({name, info.substr(begin, length)});
        position = begin + length + length % 2;
    }
    return entries;
}

} // namespace

std::string mergedInfo(const std::string &written, const std::string &source)
{
    std::set<std::string> names;
    for (const InfoEntry &entry : entriesOf(written))
        names.insert(entry.name);
    std::string merged = written.empty() ? "INFO" : written;
    merged.append(merged.size() % 2, '\0');
    for (const InfoEntry &entry : entriesOf(source)) {
        if (names.insert(entry.name).second)
            merged += chunkBytes(entry.name, entry.text);
    }
    return merged;
}

} // namespace tooladapter
