// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/wavechunks.h"

#include <algorithm>

namespace tooladapter
{
namespace
{

constexpr std::size_t mostChunks = 1000; // files of recorders have about ten
constexpr std::uint64_t headLength = 8;  // name and length
constexpr std::uint64_t fileHeadLength = 12;
constexpr std::uint64_t seeElsewhere = 0xffffffff; // the length is in "ds64"
constexpr std::uint64_t longLengthsLength = 28;    // of a "ds64" without a table

} // namespace

const Chunk *ChunkList::find(const char *name) const
{
    const auto found =
        std::find_if(chunks.begin(), chunks.end(), [name](const Chunk &chunk) { return chunk.name == name; });
    return found == chunks.end() ? nullptr : &*found;
}

ChunkList chunksOf(const Bytes &file)
{
    ChunkList list;
    if (file.size < fileHeadLength)
        return list;
    const std::string head = file.at(0, fileHeadLength);
    list.isLong = head.starts_with("RF64") || head.starts_with("BW64");
    if ((!list.isLong && !head.starts_with("RIFF")) || !head.ends_with("WAVE"))
        return list;

    std::uint64_t longLength = seeElsewhere; // of the samples
    std::uint64_t position = fileHeadLength;
    while (file.size - position >= headLength && list.chunks.size() < mostChunks) {
        const std::string chunkHead = file.at(position, headLength);
        Chunk chunk{chunkHead.substr(0, 4), position + headLength, numberAt(chunkHead, 4, 4)};
        if (list.isLong && chunk.name == "data" && chunk.length == seeElsewhere)
            chunk.length = longLength;
        if (!isChunkName(chunk.name) || chunk.length > file.size - chunk.begin)
            return list;
        if (list.isLong && list.chunks.empty()) {
            if (chunk.name != "ds64" || chunk.length < longLengthsLength)
                return list;
            longLength = numberAt(file.at(chunk.begin + 8, 8), 0, 8);
        }
        list.chunks.push_back(chunk);
        position = std::min(chunk.next(), file.size); // the last padding may be missing
    }
    list.isWhole = position == file.size;
    return list;
}

bool isChunkName(const std::string &name)
{
    return std::all_of(name.begin(), name.end(), [](char letter) { return letter >= ' ' && letter <= '~'; });
}

std::uint64_t numberAt(const std::string &bytes, std::size_t position, std::size_t count)
{
    std::uint64_t number = 0;
    for (std::size_t i = count; i > 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes.at(position + i - 1));
    return number;
}

std::string numberBytes(std::uint64_t number, std::size_t count)
{
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xff);
    return bytes;
}

std::string chunkBytes(const std::string &name, const std::string &content)
{
    return name + numberBytes(content.size(), 4) + content + std::string(content.size() % 2, '\0');
}

} // namespace tooladapter
